// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/SampleRate.h"

namespace ConversionEngine {

float rawValue(SampleRate rate)
{
    return sampleRateTable.rawValue(rate);
}

std::optional<SampleRate> sampleRateFromRawValue(float hertz)
{
    return sampleRateTable.fromRawValue(hertz);
}

} // namespace ConversionEngine
