// SPDX-License-Identifier: GPL-3.0-or-later
// What a video conversion does with the sound: pass it through or encode it anew.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace Ondrilet {

enum class AudioHandlingMode
{
    passthrough,
    reencode,
};

// "passthrough", "reencode".
QString rawValue(AudioHandlingMode mode);
std::optional<AudioHandlingMode> audioHandlingModeFromRawValue(const QString& raw);

// Every case in declared order, with its raw value.
inline constexpr auto audioHandlingModeTable =
    ConversionEngine::enumTable<AudioHandlingMode, QStringView>({
        {AudioHandlingMode::passthrough, u"passthrough"},
        {AudioHandlingMode::reencode, u"reencode"},
    });
static_assert(audioHandlingModeTable.hasDistinctCases());

inline const auto& allAudioHandlingModes()
{
    return audioHandlingModeTable.allCases();
}

} // namespace Ondrilet
