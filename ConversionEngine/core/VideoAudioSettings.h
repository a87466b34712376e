// SPDX-License-Identifier: GPL-3.0-or-later
// The sound of a video conversion: the first audio track decoded to 16-bit PCM at the output's
// rate and channel count, then encoded to AAC at 128 kb/s per channel. At most 6 channels; the
// rate stays when it is 44.1, 48 or 96 kHz, else 48 kHz. Pure; any thread.
#pragma once

#include <cstdint>
#include <optional>

namespace ConversionEngine {

struct VideoAudioSettings
{
    std::int64_t channels = defaultChannels;
    double sampleRateHertz = defaultSampleRateHertz;

    static constexpr std::int64_t defaultChannels = 2;
    static constexpr double defaultSampleRateHertz = 48000.0;
    static constexpr std::int64_t maximumChannels = 6;
    static constexpr std::int64_t bitRatePerChannel = 128000;
    static constexpr int pcmBitDepth = 16;

    std::int64_t bitRateBitsPerSecond() const { return channels * bitRatePerChannel; }

    bool operator==(const VideoAudioSettings&) const = default;
};

// From the source's channel count and rate, when its track describes them; the defaults when not.
VideoAudioSettings videoAudioSettings(std::optional<std::int64_t> sourceChannels,
                                      std::optional<double> sourceSampleRateHertz);

} // namespace ConversionEngine
