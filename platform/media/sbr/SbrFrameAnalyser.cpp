// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/sbr/SbrFrameAnalyser.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace Platform::Sbr {

namespace {

// Mean subband power of our filter bank times this is the level a decoder's filter bank
// reports for the same signal (found by coding noise of known level and decoding it).
constexpr double levelScale = 64.0 * 32768.0 * 32768.0;
// Two envelopes when the halves of a frame differ by more than this (in level ratio).
constexpr double splitRatio = 2.8;
// Below this mean subband power a band is silent.
constexpr double silence = 1e-12;
// A subband whose prediction error is below this share of its power holds a steady tone (a
// steady tone measures 0.06 over one frame).
constexpr double toneError = 0.1;
// ...and the tone stands alone when it holds this share of its band's power.
constexpr double toneShare = 0.6;
// A copied subband this noisy cannot stand in for a tone.
constexpr double noisySource = 0.1;
// A slot whose high band holds this many times the mean of the slots before it starts a
// transient.
constexpr double transientRise = 8.0;
constexpr int transientHistory = 6;
constexpr int longestStep = 8;

// Envelope lengths (2, 4, 6 or 8 slots, at most three) that add up to `total`; empty when
// none do.
std::vector<int> stepsOf(int total)
{
    std::vector<int> steps;
    if (total < 2 || total % 2 != 0 || total > 3 * longestStep)
        return steps;
    while (total > 0) {
        const int step = std::min(longestStep, total);
        steps.push_back(step);
        total -= step;
    }
    return steps;
}

} // namespace

SbrFrameAnalyser::SbrFrameAnalyser(const FrequencyTables& tables)
    : m_tables(tables)
{}

int SbrFrameAnalyser::quantisedLevel(double power)
{
    const double scaled = std::max(power, silence) * levelScale;
    const double level = 2.0 * std::log2(scaled / 64.0);
    return std::clamp(static_cast<int>(std::lround(level)), 0, 127);
}

SbrFrame SbrFrameAnalyser::analyse(const Slot* slots)
{
    std::vector<double> power = m_earlierPower;
    power.resize(transientHistory, 0.0);
    for (int l = 0; l < slotsNeeded; ++l) {
        double sum = 0.0;
        for (int k = m_tables.kx; k < m_tables.kx + m_tables.m; ++k)
            sum += std::norm(slots[l][static_cast<std::size_t>(k)]);
        power.push_back(sum);
    }
    // In the frame after its first envelope's first slot, and in the next frame's first slots.
    const int transient = transientAt(power, 2 * m_leadingBorder + 2, slotsPerFrame);
    const int next = transientAt(power, slotsPerFrame, slotsPerFrame + 6);
    int trailing = next >= 0 ? (next - slotsPerFrame) / 2 : 0;

    SbrFrame frame;
    if (transient < 0 && m_leadingBorder == 0 && trailing == 0) {
        frame.borders = chooseBorders(slots);
    } else {
        frame.frameClass = FrameClass::varVar;
        frame.borders = {m_leadingBorder, slotsPerFrame / 2 + trailing};
        if (transient >= 0) {
            // Without a transient to meet in the next frame, the frame may end a slot late so
            // that a border lands on the transient itself.
            const int at = transient / 2;
            if (next < 0 && stepsOf(at - m_leadingBorder).empty() &&
                stepsOf(slotsPerFrame / 2 - at).empty() &&
                !stepsOf(slotsPerFrame / 2 + 1 - at).empty()) {
                trailing = 1;
                frame.borders.back() = slotsPerFrame / 2 + trailing;
            }
            placeAroundTransient(frame, at);
        }
    }
    for (int e = 0; e < frame.envelopeCount(); ++e) {
        frame.envelopes.push_back(envelope(slots, 2 * frame.borders[static_cast<std::size_t>(e)],
                                           2 * frame.borders[static_cast<std::size_t>(e) + 1]));
    }
    measureNoise(slots, frame);
    findSinusoids(slots, frame);
    m_leadingBorder = trailing;
    m_earlierPower.assign(power.begin() + transientHistory + slotsPerFrame - transientHistory,
                          power.begin() + transientHistory + slotsPerFrame);
    return frame;
}

int SbrFrameAnalyser::transientAt(const std::vector<double>& power, int firstSlot,
                                  int endSlot) const
{
    // `power` starts with the history, so slot l is at l + transientHistory.
    int best = -1;
    double bestRise = transientRise;
    for (int l = std::max(0, firstSlot); l < endSlot; ++l) {
        double before = 0.0;
        for (int j = 1; j <= transientHistory; ++j)
            before += power[static_cast<std::size_t>(l + transientHistory - j)];
        before /= transientHistory;
        const double now = power[static_cast<std::size_t>(l + transientHistory)];
        const double rise = now / (before + silence * m_tables.m);
        if (rise > bestRise && now > silence * m_tables.m * 1e3) {
            bestRise = rise;
            best = l;
        }
    }
    if (best < 0)
        return best;
    // The filter bank's window sees a transient coming a few slots early, faintly; the onset
    // is where the power reaches half of what it soon peaks at.
    const int last = std::min(best + 4, static_cast<int>(power.size()) - transientHistory - 1);
    double peak = 0.0;
    for (int l = best; l <= last; ++l)
        peak = std::max(peak, power[static_cast<std::size_t>(l + transientHistory)]);
    while (best < std::min(last, endSlot - 1) &&
           power[static_cast<std::size_t>(best + transientHistory)] < 0.5 * peak)
        ++best;
    return best;
}

void SbrFrameAnalyser::placeAroundTransient(SbrFrame& frame, int transient) const
{
    const int first = frame.borders.front();
    const int last = frame.borders.back();
    // A border on an odd distance from both ends cannot be coded; one slot earlier can.
    for (int at = transient; at > first; --at) {
        const std::vector<int> leading = stepsOf(at - first);
        const std::vector<int> trailing = stepsOf(last - at);
        if (!leading.empty()) {
            frame.leadingLengths = leading;
            frame.borders = {first};
            for (int step : leading)
                frame.borders.push_back(frame.borders.back() + step);
            frame.borders.push_back(last);
        } else if (!trailing.empty()) {
            frame.trailingLengths = trailing;
            frame.borders = {first, at};
            for (std::size_t i = trailing.size() - 1; i > 0; --i)
                frame.borders.push_back(frame.borders.back() + trailing[i]);
            frame.borders.push_back(last);
        } else {
            continue;
        }
        // The pointer names the envelope that starts at the transient, counted from the end.
        const int count = frame.envelopeCount();
        const int index = static_cast<int>(
            std::find(frame.borders.begin(), frame.borders.end(), at) - frame.borders.begin());
        const int pointer = count + 1 - index;
        if (pointer < (1 << std::bit_width(static_cast<unsigned>(count))))
            frame.pointer = pointer;
        return;
    }
}

std::vector<int> SbrFrameAnalyser::chooseBorders(const Slot* slots) const
{
    double halves[2] = {0.0, 0.0};
    for (int l = 0; l < slotsPerFrame; ++l) {
        for (int k = m_tables.kx; k < m_tables.kx + m_tables.m; ++k)
            halves[l / (slotsPerFrame / 2)] += std::norm(slots[l][static_cast<std::size_t>(k)]);
    }
    const double ratio =
        (std::max(halves[0], halves[1]) + silence) / (std::min(halves[0], halves[1]) + silence);
    if (ratio > splitRatio)
        return {0, 8, 16};
    return {0, 16};
}

std::vector<int> SbrFrameAnalyser::envelope(const Slot* slots, int firstSlot, int endSlot) const
{
    const std::vector<int>& borders = m_tables.bands(true);
    std::vector<int> levels;
    for (std::size_t band = 0; band + 1 < borders.size(); ++band) {
        double sum = 0.0;
        for (int l = firstSlot; l < endSlot; ++l) {
            for (int k = borders[band]; k < borders[band + 1]; ++k)
                sum += std::norm(slots[l][static_cast<std::size_t>(k)]);
        }
        const double mean = sum / ((endSlot - firstSlot) * (borders[band + 1] - borders[band]));
        levels.push_back(quantisedLevel(mean));
    }
    return levels;
}

double SbrFrameAnalyser::predictionErrorRatio(const Slot* slots, int count, int subband)
{
    // Second-order linear prediction across time in one subband: near 0 for a steady tone,
    // near 1 for noise.
    std::complex<double> r1;
    std::complex<double> r2;
    double r0 = 0.0;
    for (int l = 0; l < count; ++l) {
        const std::complex<double> x = slots[l][static_cast<std::size_t>(subband)];
        r0 += std::norm(x);
        if (l >= 1)
            r1 += x *
                  std::conj(std::complex<double>(slots[l - 1][static_cast<std::size_t>(subband)]));
        if (l >= 2)
            r2 += x *
                  std::conj(std::complex<double>(slots[l - 2][static_cast<std::size_t>(subband)]));
    }
    if (r0 <= silence)
        return 1.0;
    const std::complex<double> k1 = r1 / r0;
    const double e1 = r0 * std::max(1e-9, 1.0 - std::norm(k1));
    const std::complex<double> k2 = (r2 - k1 * r1) / e1;
    const double e2 = e1 * std::max(1e-9, 1.0 - std::min(1.0, std::norm(k2)));
    return std::clamp(e2 / r0, 0.0, 1.0);
}

void SbrFrameAnalyser::measureNoise(const Slot* slots, SbrFrame& frame) const
{
    std::vector<int> floors;
    for (int band = 0; band < m_tables.noiseBandCount(); ++band) {
        double original = 0.0;
        double source = 0.0;
        int count = 0;
        for (int k = m_tables.noise[static_cast<std::size_t>(band)];
             k < m_tables.noise[static_cast<std::size_t>(band) + 1]; ++k) {
            original += predictionErrorRatio(slots, slotsPerFrame, k);
            source += predictionErrorRatio(slots, slotsPerFrame, m_tables.sourceOf(k));
            ++count;
        }
        original /= std::max(1, count);
        source /= std::max(1, count);
        // The share of noise that brings the copied band's noisiness up to the original's.
        const double wanted = (original - source) / std::max(0.05, 1.0 - original);
        const double ratio = std::clamp(wanted, std::pow(2.0, -24.0), 64.0);
        floors.push_back(std::clamp(static_cast<int>(std::lround(6.0 - std::log2(ratio))), 0, 30));
        const double gap = original - source;
        frame.inverseFiltering.push_back(gap > 0.6 ? 3 : gap > 0.35 ? 2 : gap > 0.15 ? 1 : 0);
    }
    frame.noiseFloors.assign(static_cast<std::size_t>(frame.noiseEnvelopeCount()), floors);
}

void SbrFrameAnalyser::findSinusoids(const Slot* slots, SbrFrame& frame) const
{
    const std::vector<int>& borders = m_tables.bands(true);
    const int bandCount = m_tables.bandCount(true);
    std::vector<bool> flags(static_cast<std::size_t>(bandCount), false);
    bool any = false;
    for (int band = 0; band < bandCount; ++band) {
        const int first = borders[static_cast<std::size_t>(band)];
        const int end = borders[static_cast<std::size_t>(band) + 1];
        std::vector<double> power;
        for (int k = first; k < end; ++k) {
            double sum = 0.0;
            for (int l = 0; l < slotsPerFrame; ++l)
                sum += std::norm(slots[l][static_cast<std::size_t>(k)]);
            power.push_back(sum);
        }
        const auto strongest = std::max_element(power.begin(), power.end());
        const int peak = first + static_cast<int>(strongest - power.begin());
        double total = silence;
        for (double value : power)
            total += value;
        // A tone between two subbands shares itself between them.
        double share = *strongest;
        if (peak > first)
            share = std::max(share, *strongest + power[static_cast<std::size_t>(peak - first - 1)]);
        if (peak + 1 < end)
            share = std::max(share, *strongest + power[static_cast<std::size_t>(peak - first + 1)]);
        if (share < toneShare * total || *strongest < silence * slotsPerFrame * 1e3)
            continue;
        if (predictionErrorRatio(slots, slotsPerFrame, peak) > toneError ||
            predictionErrorRatio(slots, slotsPerFrame, m_tables.sourceOf(peak)) < noisySource)
            continue;
        flags[static_cast<std::size_t>(band)] = true;
        any = true;
    }
    if (any)
        frame.sinusoids = flags;
}

} // namespace Platform::Sbr
