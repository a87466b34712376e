// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/Biquad.h"

namespace ConversionEngine {

void Biquad::processInPlace(float* samples, std::size_t count)
{
    // Working on local copies lets the state stay in registers for the whole run.
    Biquad local = *this;
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = local.process(samples[i]);
    z1 = local.z1;
    z2 = local.z2;
}

} // namespace ConversionEngine
