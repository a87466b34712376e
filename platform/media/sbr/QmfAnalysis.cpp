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

constexpr int folded = 2 * QmfAnalysis::bands;

struct Tables
{
    std::vector<float> prototype = makePrototype();
    // The modulation as a 128-point transform: input twiddles, output twiddles (with the
    // window centre's phase), bit-reversed order and the transform's own twiddles.
    std::vector<std::complex<float>> before;
    std::vector<std::complex<float>> after;
    std::vector<int> reversed;
    std::vector<std::complex<float>> roots;

    Tables()
    {
        // X_k = sum_j z_j exp(-i pi (k + 1/2)(j - c) / 64), c = 319.5, split into a plain
        // 128-point transform between two twiddles.
        for (int j = 0; j < folded; ++j)
            before.push_back(std::polar(1.0f, static_cast<float>(-std::numbers::pi * j / folded)));
        for (int k = 0; k < QmfAnalysis::bands; ++k) {
            const double phase =
                std::numbers::pi * (k + 0.5) * QmfAnalysis::centreDelay / QmfAnalysis::bands;
            after.push_back(std::polar(1.0f, static_cast<float>(phase)));
        }
        for (int j = 0; j < folded; ++j) {
            int r = 0;
            for (int bit = 0; bit < 7; ++bit)
                r |= ((j >> bit) & 1) << (6 - bit);
            reversed.push_back(r);
        }
        for (int j = 0; j < folded / 2; ++j)
            roots.push_back(
                std::polar(1.0f, static_cast<float>(-2.0 * std::numbers::pi * j / folded)));
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
    std::array<std::complex<float>, folded> values;
    for (int j = 0; j < folded; ++j) {
        float sum = 0.0f;
        for (int block = 0; block < taps / folded; ++block) {
            const int n = j + folded * block;
            const float value =
                window[taps - 1 - n] * shared.prototype[static_cast<std::size_t>(n)];
            sum += (block % 2 == 0) ? value : -value;
        }
        values[static_cast<std::size_t>(shared.reversed[static_cast<std::size_t>(j)])] =
            sum * shared.before[static_cast<std::size_t>(j)];
    }
    for (int length = 2; length <= folded; length *= 2) {
        const int stride = folded / length;
        for (int start = 0; start < folded; start += length) {
            for (int k = 0; k < length / 2; ++k) {
                const std::size_t a = static_cast<std::size_t>(start + k);
                const std::size_t b = a + static_cast<std::size_t>(length / 2);
                const std::complex<float> twisted =
                    values[b] * shared.roots[static_cast<std::size_t>(k * stride)];
                values[b] = values[a] - twisted;
                values[a] += twisted;
            }
        }
    }
    for (std::size_t k = 0; k < slot.size(); ++k)
        slot[k] = values[k] * shared.after[k];
}

} // namespace Platform::Sbr
