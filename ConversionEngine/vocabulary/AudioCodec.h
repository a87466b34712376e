// The audio codecs the audio engine is asked for. The first three raw values are lower case,
// unlike the application's. Plain value; any thread.
#pragma once

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

inline const std::array<AudioCodec, 5>& allAudioCodecs()
{
    static constexpr std::array<AudioCodec, 5> cases{
        AudioCodec::aac, AudioCodec::alac, AudioCodec::pcm, AudioCodec::heAac, AudioCodec::heAacV2,
    };
    return cases;
}

} // namespace ConversionEngine
