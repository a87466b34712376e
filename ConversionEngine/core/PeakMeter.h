// SPDX-License-Identifier: GPL-3.0-or-later
// The running sample peak of the peak pass: the largest magnitude over every sample of every
// channel, as decoded. NaN samples leave it as it is. One meter per pass, one thread at a time.
#pragma once

#include "ConversionEngine/core/LevelGain.h"

#include <cstddef>

namespace ConversionEngine {

class PeakMeter
{
public:
    void add(const float* samples, std::size_t count);

    float linearPeak() const { return m_peak; }
    PeakLevel level() const { return LevelGain::peakLevel(m_peak); }

private:
    float m_peak = 0.0f;
};

} // namespace ConversionEngine
