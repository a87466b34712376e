// The bit rates of compressed audio output; the raw value is in bits per second. The three
// membership tests say which rates suit which codec; no conversion consults them. Any thread.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class AudioBitrate
{
    kbps16 = 16000,
    kbps24 = 24000,
    kbps32 = 32000,
    kbps48 = 48000,
    kbps64 = 64000,
    kbps128 = 128000,
    kbps192 = 192000,
    kbps256 = 256000,
    kbps320 = 320000,
};

// Bits per second.
constexpr int rawValue(AudioBitrate bitrate)
{
    return static_cast<int>(bitrate);
}

std::optional<AudioBitrate> audioBitrateFromRawValue(int bitsPerSecond);
// "128 kbps".
QString displayName(AudioBitrate bitrate);
bool isOptimalForHEAACv2(AudioBitrate bitrate);
bool isOptimalForHEAAC(AudioBitrate bitrate);
bool isOptimalForAAC(AudioBitrate bitrate);

inline const std::array<AudioBitrate, 9>& allAudioBitrates()
{
    static constexpr std::array<AudioBitrate, 9> cases{
        AudioBitrate::kbps16,  AudioBitrate::kbps24,  AudioBitrate::kbps32,
        AudioBitrate::kbps48,  AudioBitrate::kbps64,  AudioBitrate::kbps128,
        AudioBitrate::kbps192, AudioBitrate::kbps256, AudioBitrate::kbps320,
    };
    return cases;
}

} // namespace ConversionEngine
