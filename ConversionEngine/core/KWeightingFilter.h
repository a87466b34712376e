// SPDX-License-Identifier: GPL-3.0-or-later
// The loudness weighting: per channel, a 38 Hz high-pass section followed by a +4 dB high shelf
// at about 1682 Hz. The sections are designed in 64-bit float for the given rate, whatever it is,
// and kept in 32-bit float. One filter serves one analysis, on one thread at a time.
#pragma once

#include "ConversionEngine/core/Biquad.h"

#include <cstddef>
#include <vector>

namespace ConversionEngine {

class KWeightingFilter
{
public:
    KWeightingFilter(int channels, double sampleRate);

    // The designs for one rate; every channel gets the same numbers.
    static Biquad::Coefficients highPassCoefficients(double sampleRate);
    static Biquad::Coefficients highShelfCoefficients(double sampleRate);

    int channelCount() const { return static_cast<int>(hpBiquad.size()); }

    // One sample of one channel through both of that channel's sections.
    float process(int channel, float x);

    // A run of one channel's samples, in place; the state carries on into the next call.
    void processChannelInPlace(int channel, float* samples, std::size_t count);

    std::vector<Biquad> hpBiquad;
    std::vector<Biquad> shelfBiquad;
};

} // namespace ConversionEngine
