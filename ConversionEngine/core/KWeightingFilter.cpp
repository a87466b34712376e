// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/KWeightingFilter.h"

#include <algorithm>
#include <cmath>

namespace ConversionEngine {

namespace {

// 2π × 38 Hz and 2π × 1681.974 Hz.
constexpr double highPassRadiansPerSecond = 238.76104167282426;
constexpr double shelfRadiansPerSecond = 10568.154323858076;
// The shelf's bandwidth divisor is this literal, a little under the square root of two.
constexpr double shelfAlphaDivisor = 1.414;
// A = 10^(4/40), a shelf gain of +4 dB, and the numbers derived from it, all as literals.
constexpr double shelfA = 1.2589254117941673;
constexpr double shelfTwoSqrtA = 2.244036908603927;
constexpr double shelfAMinusOne = 0.2589254117941673;
constexpr double shelfAPlusOne = 2.2589254117941673;
constexpr double shelfMinusTwoA = -2.5178508235883346;

} // namespace

KWeightingFilter::KWeightingFilter(int channels, double sampleRate)
{
    const auto count = static_cast<std::size_t>(std::max(channels, 0));
    hpBiquad.assign(count, Biquad(highPassCoefficients(sampleRate)));
    shelfBiquad.assign(count, Biquad(highShelfCoefficients(sampleRate)));
}

Biquad::Coefficients KWeightingFilter::highPassCoefficients(double sampleRate)
{
    const double w = highPassRadiansPerSecond / sampleRate;
    const double s = std::sin(w);
    const double c = std::cos(w);
    const double a0 = 1.0 + s;
    Biquad::Coefficients result;
    result.b0 = static_cast<float>((1.0 + c) * 0.5 / a0);
    result.b1 = static_cast<float>(-(1.0 + c) / a0);
    result.b2 = result.b0;
    result.a1 = static_cast<float>(-2.0 * c / a0);
    result.a2 = static_cast<float>((1.0 - s) / a0);
    return result;
}

Biquad::Coefficients KWeightingFilter::highShelfCoefficients(double sampleRate)
{
    const double w = shelfRadiansPerSecond / sampleRate;
    const double s = std::sin(w);
    const double c = std::cos(w);
    const double alpha = s / shelfAlphaDivisor;
    const double p = shelfAPlusOne + shelfAMinusOne * c;
    const double m = shelfAPlusOne - shelfAMinusOne * c;
    const double k = shelfTwoSqrtA * alpha;
    const double a0 = m + k;
    Biquad::Coefficients result;
    result.b0 = static_cast<float>(shelfA * (p + k) / a0);
    result.b1 = static_cast<float>(shelfMinusTwoA * (shelfAMinusOne + shelfAPlusOne * c) / a0);
    result.b2 = static_cast<float>(shelfA * (p - k) / a0);
    result.a1 = static_cast<float>(2.0 * (shelfAMinusOne - shelfAPlusOne * c) / a0);
    result.a2 = static_cast<float>((m - k) / a0);
    return result;
}

float KWeightingFilter::process(int channel, float x)
{
    const auto index = static_cast<std::size_t>(channel);
    return shelfBiquad[index].process(hpBiquad[index].process(x));
}

void KWeightingFilter::processChannelInPlace(int channel, float* samples, std::size_t count)
{
    const auto index = static_cast<std::size_t>(channel);
    hpBiquad[index].processInPlace(samples, count);
    shelfBiquad[index].processInPlace(samples, count);
}

} // namespace ConversionEngine
