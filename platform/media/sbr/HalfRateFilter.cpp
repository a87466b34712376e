// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/sbr/HalfRateFilter.h"

#include <cmath>
#include <numbers>

namespace Platform::Sbr {

namespace {

constexpr int length = 2 * HalfRateFilter::delay + 1;

double besselI0(double x)
{
    double sum = 1.0;
    double term = 1.0;
    for (int k = 1; k < 40; ++k) {
        term *= (x / (2.0 * k)) * (x / (2.0 * k));
        sum += term;
    }
    return sum;
}

std::vector<float> makeTaps()
{
    constexpr double beta = 8.0;
    std::vector<float> taps(length);
    for (int n = 0; n < length; ++n) {
        const int t = n - HalfRateFilter::delay;
        const double ratio = static_cast<double>(t) / (HalfRateFilter::delay + 1);
        const double window = besselI0(beta * std::sqrt(1.0 - ratio * ratio)) / besselI0(beta);
        const double sinc =
            t == 0 ? 0.5 : std::sin(std::numbers::pi * t / 2.0) / (std::numbers::pi * t);
        taps[static_cast<std::size_t>(n)] = static_cast<float>(sinc * window);
    }
    return taps;
}

const std::vector<float>& taps()
{
    static const std::vector<float> shared = makeTaps();
    return shared;
}

} // namespace

HalfRateFilter::HalfRateFilter()
    : m_history(2 * length, 0.0f)
{}

void HalfRateFilter::process(const float* input, int count, std::vector<float>& output)
{
    const std::vector<float>& coefficients = taps();
    for (int i = 0; i < count; ++i) {
        m_history[static_cast<std::size_t>(m_position)] = input[i];
        m_history[static_cast<std::size_t>(m_position + length)] = input[i];
        m_position = (m_position + 1) % length;
        if (i % 2 == 1)
            continue;
        // Newest sample last; every odd tap away from the centre is zero but the centre.
        const float* window = m_history.data() + m_position;
        float sum = coefficients[delay] * window[length - 1 - delay];
        for (int t = 1; t <= delay; t += 2) {
            sum += coefficients[static_cast<std::size_t>(delay + t)] *
                   (window[length - 1 - delay - t] + window[length - 1 - delay + t]);
        }
        output.push_back(sum);
    }
}

} // namespace Platform::Sbr
