// The audio bit rates the user can pick; the raw value is in kilobits per second, and
// bitsPerSecond is what crosses into the engine. Nothing lies between 64 and 128. Any thread.
#pragma once

#include <array>
#include <optional>

namespace Ondrilet {

enum class AudioBitrate
{
    kbps16 = 16,
    kbps24 = 24,
    kbps32 = 32,
    kbps48 = 48,
    kbps64 = 64,
    kbps128 = 128,
    kbps192 = 192,
    kbps256 = 256,
    kbps320 = 320,
};

// Kilobits per second.
constexpr int rawValue(AudioBitrate bitrate)
{
    return static_cast<int>(bitrate);
}

constexpr int bitsPerSecond(AudioBitrate bitrate)
{
    return rawValue(bitrate) * 1000;
}

std::optional<AudioBitrate> audioBitrateFromRawValue(int kilobitsPerSecond);

inline const std::array<AudioBitrate, 9>& allAudioBitrates()
{
    static constexpr std::array<AudioBitrate, 9> cases{
        AudioBitrate::kbps16,  AudioBitrate::kbps24,  AudioBitrate::kbps32,
        AudioBitrate::kbps48,  AudioBitrate::kbps64,  AudioBitrate::kbps128,
        AudioBitrate::kbps192, AudioBitrate::kbps256, AudioBitrate::kbps320,
    };
    return cases;
}

} // namespace Ondrilet
