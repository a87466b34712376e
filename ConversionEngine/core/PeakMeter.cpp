// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/PeakMeter.h"

#include <cmath>

namespace ConversionEngine {

void PeakMeter::add(const float* samples, std::size_t count)
{
    float peak = m_peak;
    for (std::size_t i = 0; i < count; ++i) {
        const float magnitude = std::fabs(samples[i]);
        if (magnitude > peak)
            peak = magnitude;
    }
    m_peak = peak;
}

} // namespace ConversionEngine
