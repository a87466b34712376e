// SPDX-License-Identifier: GPL-3.0-or-later
// The audio output formats the user can pick; the raw value is also the file extension.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace Ondrilet {

enum class AudioFormat
{
    aiff,
    wav,
    m4a,
    caf,
};

// "aiff", "wav", "m4a", "caf".
QString rawValue(AudioFormat format);
std::optional<AudioFormat> audioFormatFromRawValue(const QString& raw);

// Every case in declared order, with its raw value.
inline constexpr auto audioFormatTable = ConversionEngine::enumTable<AudioFormat, QStringView>({
    {AudioFormat::aiff, u"aiff"},
    {AudioFormat::wav, u"wav"},
    {AudioFormat::m4a, u"m4a"},
    {AudioFormat::caf, u"caf"},
});
static_assert(audioFormatTable.hasDistinctCases());

inline const auto& allAudioFormats()
{
    return audioFormatTable.allCases();
}

} // namespace Ondrilet
