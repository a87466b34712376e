// SPDX-License-Identifier: GPL-3.0-or-later
// The audio codecs the user can pick; the raw value is also the label and the file-name token.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace Ondrilet {

enum class AudioCodec
{
    aac,
    alac,
    pcm,
    heAac,
    heAacV2,
};

// "AAC", "ALAC", "PCM", "HE-AAC", "HE-AAC v2".
QString rawValue(AudioCodec codec);
std::optional<AudioCodec> audioCodecFromRawValue(const QString& raw);

// Every case in declared order, with its raw value.
inline constexpr auto audioCodecTable = ConversionEngine::enumTable<AudioCodec, QStringView>({
    {AudioCodec::aac, u"AAC"},
    {AudioCodec::alac, u"ALAC"},
    {AudioCodec::pcm, u"PCM"},
    {AudioCodec::heAac, u"HE-AAC"},
    {AudioCodec::heAacV2, u"HE-AAC v2"},
});
static_assert(audioCodecTable.hasDistinctCases());

inline const auto& allAudioCodecs()
{
    return audioCodecTable.allCases();
}

} // namespace Ondrilet
