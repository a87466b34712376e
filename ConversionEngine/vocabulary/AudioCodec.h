// SPDX-License-Identifier: GPL-3.0-or-later
// The audio codecs the audio engine is asked for. The first three raw values are lower case,
// unlike the application's. Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class AudioCodec
{
    aac,
    alac,
    pcm,
    heAac,
    heAacV2,
};

QString rawValue(AudioCodec codec);
// Exact, case-sensitive lookup: "AAC" finds nothing.
std::optional<AudioCodec> audioCodecFromRawValue(const QString& raw);

// Every case in declared order, with its raw value.
inline constexpr auto audioCodecTable = enumTable<AudioCodec, QStringView>({
    {AudioCodec::aac, u"aac"},
    {AudioCodec::alac, u"alac"},
    {AudioCodec::pcm, u"pcm"},
    {AudioCodec::heAac, u"HE-AAC"},
    {AudioCodec::heAacV2, u"HE-AAC v2"},
});
static_assert(audioCodecTable.hasDistinctCases());

inline const auto& allAudioCodecs()
{
    return audioCodecTable.allCases();
}

} // namespace ConversionEngine
