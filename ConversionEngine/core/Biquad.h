// SPDX-License-Identifier: GPL-3.0-or-later
// One second-order filter section in transposed direct form II, in 32-bit float, with its two
// state values carried from call to call. A section belongs to one stream of samples; use it from
// one thread at a time.
#pragma once

#include <cstddef>

namespace ConversionEngine {

class Biquad
{
public:
    // Normalised so that a0 is 1.
    struct Coefficients
    {
        float b0 = 1.0f;
        float b1 = 0.0f;
        float b2 = 0.0f;
        float a1 = 0.0f;
        float a2 = 0.0f;
    };

    Biquad() = default;
    explicit Biquad(const Coefficients& sectionCoefficients)
        : coeffs(sectionCoefficients)
    {}

    // The terms are grouped exactly as written so that every build gives the same bits.
    float process(float x)
    {
        const float y = coeffs.b0 * x + z1;
        z1 = (coeffs.b1 * x - coeffs.a1 * y) + z2;
        z2 = coeffs.b2 * x - coeffs.a2 * y;
        return y;
    }

    void processInPlace(float* samples, std::size_t count);

    float z1 = 0.0f;
    float z2 = 0.0f;
    Coefficients coeffs;
};

} // namespace ConversionEngine
