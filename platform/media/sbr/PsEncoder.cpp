// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/sbr/PsEncoder.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Platform::Sbr {

namespace {

// The level differences (dB) and coherences the coarse grid can say.
constexpr std::array<double, 15> levelSteps{-25, -18, -14, -10, -7, -4, -2, 0,
                                            2,   4,   7,   10,  14, 18, 25};
constexpr std::array<double, 8> coherenceSteps{1.0,     0.937, 0.84118, 0.60092,
                                               0.36764, 0.0,   -0.589,  -1.0};
constexpr double silence = 1e-12;

template <std::size_t N>
int nearest(const std::array<double, N>& steps, double value)
{
    int best = 0;
    for (int i = 1; i < static_cast<int>(N); ++i) {
        if (std::abs(steps[static_cast<std::size_t>(i)] - value) <
            std::abs(steps[static_cast<std::size_t>(best)] - value))
            best = i;
    }
    return best;
}

} // namespace

const std::vector<int>& PsEncoder::bandBorders()
{
    // The three lowest subbands each stand for a pair or more of the decoder's finer bands;
    // one value serves them all.
    static const std::vector<int> borders{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 14, 18, 23, 35, 64};
    return borders;
}

BitWriter PsEncoder::code(const Slot* left, const Slot* right, int count, bool withHeader)
{
    // Values per subband group, spread to the 20 coded bands below.
    const std::vector<int>& borders = bandBorders();
    std::vector<int> groupLevels;
    std::vector<int> groupCoherences;
    for (std::size_t group = 0; group + 1 < borders.size(); ++group) {
        double leftPower = 0.0;
        double rightPower = 0.0;
        double cross = 0.0;
        for (int l = 0; l < count; ++l) {
            for (int k = borders[group]; k < borders[group + 1]; ++k) {
                const std::complex<float> a = left[l][static_cast<std::size_t>(k)];
                const std::complex<float> b = right[l][static_cast<std::size_t>(k)];
                leftPower += std::norm(a);
                rightPower += std::norm(b);
                cross += (a * std::conj(b)).real();
            }
        }
        const double difference = 10.0 * std::log10((leftPower + silence) / (rightPower + silence));
        const double coherence = cross / std::sqrt((leftPower + silence) * (rightPower + silence));
        groupLevels.push_back(nearest(levelSteps, difference) - 7);
        groupCoherences.push_back(nearest(coherenceSteps, coherence));
    }
    // Groups 0, 1 and 2 cover stereo bands 0-3, 4-5 and 6-7; the rest one band each.
    std::vector<int> levels;
    std::vector<int> coherences;
    const std::array<int, 15> spread{4, 2, 2, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
    for (std::size_t group = 0; group < spread.size(); ++group) {
        for (int i = 0; i < spread[group]; ++i) {
            levels.push_back(groupLevels[group]);
            coherences.push_back(groupCoherences[group]);
        }
    }

    BitWriter out;
    out.write(withHeader ? 1 : 0, 1);
    if (withHeader) {
        out.write(1, 1); // level differences on
        out.write(1, 3); // 20 bands, coarse steps
        out.write(1, 1); // coherences on
        out.write(1, 3); // 20 bands
        out.write(0, 1); // no extension
    }
    out.write(0, 1); // envelopes of equal length
    out.write(1, 2); // one envelope
    writeValues(out, levels, m_previousLevels, Codebook::iidFreq, Codebook::iidTime);
    writeValues(out, coherences, m_previousCoherences, Codebook::iccFreq, Codebook::iccTime);
    return out;
}

void PsEncoder::writeValues(BitWriter& out, std::vector<int>& values, std::vector<int>& previous,
                            Codebook frequencyBook, Codebook timeBook)
{
    BitWriter frequency;
    int last = 0;
    for (int value : values) {
        frequency.writeCode(frequencyBook, value - last);
        last = value;
    }
    if (previous.size() == values.size()) {
        BitWriter time;
        for (std::size_t b = 0; b < values.size(); ++b)
            time.writeCode(timeBook, values[b] - previous[b]);
        if (time.bitCount() < frequency.bitCount()) {
            out.write(1, 1);
            out.append(time);
            previous = values;
            return;
        }
    }
    out.write(0, 1);
    out.append(frequency);
    previous = values;
}

} // namespace Platform::Sbr
