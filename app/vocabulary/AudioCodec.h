// The audio codecs the user can pick; the raw value is also the label and the file-name token.
// Plain value; any thread.
#pragma once

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

inline const std::array<AudioCodec, 5>& allAudioCodecs()
{
    static constexpr std::array<AudioCodec, 5> cases{
        AudioCodec::aac, AudioCodec::alac, AudioCodec::pcm, AudioCodec::heAac, AudioCodec::heAacV2,
    };
    return cases;
}

} // namespace Ondrilet
