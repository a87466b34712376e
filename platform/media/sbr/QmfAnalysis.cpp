// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/sbr/QmfAnalysis.h"

#include <cmath>
#include <numbers>

namespace Platform::Sbr {

namespace {

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

std::vector<double> windowedSinc(double cutoff)
{
    constexpr double beta = 8.0;
    constexpr int length = QmfAnalysis::taps;
    std::vector<double> prototype(length);
    const double centre = (length - 1) / 2.0;
    for (int n = 0; n < length; ++n) {
        const double t = n - centre;
        const double ratio = t / (centre + 0.5);
        const double window =
            besselI0(beta * std::sqrt(std::max(0.0, 1.0 - ratio * ratio))) / besselI0(beta);
        const double sinc =
            t == 0.0 ? cutoff / std::numbers::pi : std::sin(cutoff * t) / (std::numbers::pi * t);
        prototype[static_cast<std::size_t>(n)] = sinc * window;
    }
    return prototype;
}

double gainAt(const std::vector<double>& prototype, double frequency)
{
    std::complex<double> sum;
    for (std::size_t n = 0; n < prototype.size(); ++n)
        sum += prototype[n] * std::polar(1.0, -frequency * static_cast<double>(n));
    return std::abs(sum);
}

// A low-pass whose power is half its passband power at the band edge (pi / 128), so that
// neighbouring subbands add up to a flat total.
std::vector<float> makePrototype()
{
    const double edge = std::numbers::pi / (2.0 * QmfAnalysis::bands);
    double low = 0.8 * edge;
    double high = 1.3 * edge;
    std::vector<double> prototype;
    for (int iteration = 0; iteration < 30; ++iteration) {
        const double cutoff = (low + high) / 2.0;
        prototype = windowedSinc(cutoff);
        const double ratio = gainAt(prototype, edge) / gainAt(prototype, 0.0);
        (ratio < std::sqrt(0.5) ? low : high) = cutoff;
    }
    double energy = 0.0;
    for (double value : prototype)
        energy += value * value;
    const double scale = 1.0 / std::sqrt(energy);
    std::vector<float> result;
    for (double value : prototype)
        result.push_back(static_cast<float>(value * scale));
    return result;
}

struct Tables
{
    std::vector<float> prototype = makePrototype();
    // cos and sin of the modulation, by band and folded position.
    std::vector<float> cosines;
    std::vector<float> sines;

    Tables()
    {
        constexpr int folded = 2 * QmfAnalysis::bands;
        for (int k = 0; k < QmfAnalysis::bands; ++k) {
            for (int j = 0; j < folded; ++j) {
                const double phase = -std::numbers::pi * (k + 0.5) *
                                     (j - QmfAnalysis::centreDelay) / QmfAnalysis::bands;
                cosines.push_back(static_cast<float>(std::cos(phase)));
                sines.push_back(static_cast<float>(std::sin(phase)));
            }
        }
    }
};

const Tables& tables()
{
    static const Tables shared;
    return shared;
}

} // namespace

QmfAnalysis::QmfAnalysis()
    : m_history(2 * taps, 0.0f)
{
    tables();
}

void QmfAnalysis::process(const float* samples, std::array<std::complex<float>, bands>& slot)
{
    // m_history keeps each sample twice (at i and i + taps) so the newest 640 always lie
    // contiguously, newest last.
    for (int i = 0; i < bands; ++i) {
        m_history[static_cast<std::size_t>(m_position)] = samples[i];
        m_history[static_cast<std::size_t>(m_position + taps)] = samples[i];
        m_position = (m_position + 1) % taps;
    }
    const Tables& shared = tables();
    // Oldest-first view: element taps-1-n is the sample n steps back.
    const float* window = m_history.data() + m_position;
    constexpr int folded = 2 * bands;
    for (int j = 0; j < folded; ++j) {
        float sum = 0.0f;
        for (int block = 0; block < taps / folded; ++block) {
            const int n = j + folded * block;
            const float value =
                window[taps - 1 - n] * shared.prototype[static_cast<std::size_t>(n)];
            sum += (block % 2 == 0) ? value : -value;
        }
        m_folded[static_cast<std::size_t>(j)] = sum;
    }
    for (int k = 0; k < bands; ++k) {
        const float* cosines = shared.cosines.data() + static_cast<std::ptrdiff_t>(k) * folded;
        const float* sines = shared.sines.data() + static_cast<std::ptrdiff_t>(k) * folded;
        float real = 0.0f;
        float imaginary = 0.0f;
        for (int j = 0; j < folded; ++j) {
            real += m_folded[static_cast<std::size_t>(j)] * cosines[j];
            imaginary += m_folded[static_cast<std::size_t>(j)] * sines[j];
        }
        slot[static_cast<std::size_t>(k)] = {real, imaginary};
    }
}

} // namespace Platform::Sbr
