// SPDX-License-Identifier: GPL-3.0-or-later
// The writer's settings for an audio output, one member per settings key; an empty optional is a
// key that is not set. Built from the requested format and settings and the source's rate and
// channel count; it cannot fail, the writer judges the result. Pure; any thread.
#pragma once

#include "ConversionEngine/core/AudioEncodeRequest.h"
#include "ConversionEngine/core/AudioFormatKind.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ConversionEngine {

struct AudioEncodeSettings
{
    std::string formatId;
    float sampleRateHertz = 0.0f;
    int channelCount = 0;
    std::optional<int> encoderAudioQuality;
    std::optional<int> encoderBitRateBitsPerSecond;
    std::optional<int> linearPcmBitDepthBits;
    std::optional<bool> linearPcmIsBigEndian;
    std::optional<bool> linearPcmIsFloat;
    std::optional<bool> linearPcmIsNonInterleaved;

    std::uint32_t formatIdCode() const { return fourCharacterCode(formatId); }

    bool operator==(const AudioEncodeSettings&) const = default;
};

AudioEncodeSettings audioEncodeSettings(AudioFormatKind format, const AudioEncodeRequest& request,
                                        double sourceSampleRateHertz, int sourceChannelCount);

// The rate written: the selected one only when the source is at one of the three selectable
// rates, otherwise the source's own (so 22050 Hz stays, while 44100 Hz may rise to 96000 Hz).
float outputSampleRateHertz(float selectedSampleRateHertz, double sourceSampleRateHertz);

} // namespace ConversionEngine
