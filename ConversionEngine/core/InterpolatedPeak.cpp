// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/InterpolatedPeak.h"

#include <algorithm>
#include <cmath>

namespace ConversionEngine {

namespace {

// Raising only on "strictly larger" keeps a NaN from ever becoming the peak.
inline void raise(float& peak, float candidate)
{
    if (candidate > peak)
        peak = candidate;
}

} // namespace

float maxMagnitude(std::span<const float> samples)
{
    float peak = 0.0f;
    for (const float sample : samples)
        raise(peak, std::fabs(sample));
    return peak;
}

float interpolatedPeak(std::span<const float> samples, int channels)
{
    const std::size_t stride = static_cast<std::size_t>(std::max(channels, 1));
    const std::size_t frames = samples.size() / stride;
    if (frames < 2)
        return maxMagnitude(samples);
    if (channels <= 0)
        return 0.0f;

    float peak = 0.0f;
    for (std::size_t c = 0; c < stride; ++c) {
        float prev = samples[c];
        for (std::size_t f = 1; f < frames; ++f) {
            const float cur = samples[f * stride + c];
            const float d = cur - prev;
            raise(peak, std::fabs(cur));
            raise(peak, std::fabs(prev + 0.25f * d));
            raise(peak, std::fabs(prev + 0.5f * d));
            raise(peak, std::fabs(prev + 0.75f * d));
            prev = cur;
        }
    }
    return std::min(peak, 1.0f);
}

} // namespace ConversionEngine
