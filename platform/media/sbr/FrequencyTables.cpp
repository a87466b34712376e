// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/sbr/FrequencyTables.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace Platform::Sbr {

namespace {

// Offsets of the start border from its minimum, by output rate and start index.
constexpr std::array<std::array<int, 16>, 6> startOffsets{{
    {-8, -7, -6, -5, -4, -3, -2, -1, 0, 1, 2, 3, 4, 5, 6, 7},
    {-5, -4, -3, -2, -1, 0, 1, 2, 3, 4, 5, 6, 7, 9, 11, 13},
    {-5, -3, -2, -1, 0, 1, 2, 3, 4, 5, 6, 7, 9, 11, 13, 16},
    {-6, -4, -2, -1, 0, 1, 2, 3, 4, 5, 6, 7, 9, 11, 13, 16},
    {-4, -2, -1, 0, 1, 2, 3, 4, 5, 6, 7, 9, 11, 13, 16, 20},
    {-2, -1, 0, 1, 2, 3, 4, 5, 6, 7, 9, 11, 13, 16, 20, 24},
}};

const std::array<int, 16>* offsetsFor(int rate)
{
    switch (rate) {
    case 16000:
        return &startOffsets[0];
    case 22050:
        return &startOffsets[1];
    case 24000:
        return &startOffsets[2];
    case 32000:
        return &startOffsets[3];
    case 44100:
    case 48000:
    case 64000:
        return &startOffsets[4];
    case 88200:
    case 96000:
        return &startOffsets[5];
    default:
        return nullptr;
    }
}

// Widths of `count` bands spreading `start`…`stop` in a geometric progression, rounded the
// way decoders round them (single precision, ties to even).
std::vector<int> geometricWidths(int start, int stop, int count)
{
    std::vector<int> widths(static_cast<std::size_t>(count));
    const float base = std::pow(static_cast<float>(stop) / static_cast<float>(start),
                                1.0f / static_cast<float>(count));
    float product = static_cast<float>(start);
    int previous = start;
    for (int k = 0; k < count - 1; ++k) {
        product *= base;
        const int present = static_cast<int>(std::lrint(product));
        widths[static_cast<std::size_t>(k)] = present - previous;
        previous = present;
    }
    widths.back() = stop - previous;
    return widths;
}

int roundedBandCount(float bandsPerOctaveHalf, float ratio)
{
    return static_cast<int>(std::lrint(bandsPerOctaveHalf * std::log2(ratio))) * 2;
}

int widestHighBand(int rate)
{
    if (rate <= 32000)
        return 48;
    if (rate == 44100)
        return 35;
    return 32;
}

} // namespace

std::optional<FrequencyTables> FrequencyTables::make(int sbrRate, const BandChoice& choice)
{
    FrequencyTables tables;
    if (!tables.makeMaster(sbrRate, choice) || !tables.makeDerived(sbrRate, choice) ||
        !tables.makePatches(sbrRate))
        return std::nullopt;
    return tables;
}

bool FrequencyTables::makeMaster(int sbrRate, const BandChoice& choice)
{
    const std::array<int, 16>* offsets = offsetsFor(sbrRate);
    if (!offsets)
        return false;
    const int lowest = sbrRate < 32000 ? 3000 : (sbrRate < 64000 ? 4000 : 5000);
    const int startMin = ((lowest << 7) + (sbrRate >> 1)) / sbrRate;
    const int stopMin = ((lowest << 8) + (sbrRate >> 1)) / sbrRate;
    k0 = startMin + (*offsets)[static_cast<std::size_t>(choice.startIndex)];
    if (choice.stopIndex < 14) {
        std::vector<int> steps = geometricWidths(stopMin, 64, 13);
        std::sort(steps.begin(), steps.end());
        k2 = stopMin;
        for (int k = 0; k < choice.stopIndex; ++k)
            k2 += steps[static_cast<std::size_t>(k)];
    } else {
        k2 = (choice.stopIndex == 14 ? 2 : 3) * k0;
    }
    k2 = std::min(64, k2);
    if (k2 - k0 > widestHighBand(sbrRate) || k2 <= k0)
        return false;

    master.clear();
    if (choice.freqScale == 0) {
        const int step = choice.alterScale ? 2 : 1;
        const int count = ((k2 - k0 + (step & 2)) >> step) << 1;
        if (count <= 0)
            return false;
        std::vector<int> widths(static_cast<std::size_t>(count), step);
        const int surplus = k2 - k0 - count * step;
        if (surplus < 0) {
            widths[0]--;
            if (surplus < -1)
                widths[1]--;
        } else if (surplus > 0) {
            widths.back()++;
        }
        master.push_back(k0);
        for (int width : widths)
            master.push_back(master.back() + width);
    } else {
        const float halfBands = static_cast<float>(7 - choice.freqScale);
        const bool twoRegions = 49 * k2 > 110 * k0;
        const int k1 = twoRegions ? 2 * k0 : k2;
        const int count0 = roundedBandCount(halfBands, static_cast<float>(k1) / k0);
        if (count0 <= 0)
            return false;
        std::vector<int> widths0 = geometricWidths(k0, k1, count0);
        std::sort(widths0.begin(), widths0.end());
        master.push_back(k0);
        for (int width : widths0) {
            if (width <= 0)
                return false;
            master.push_back(master.back() + width);
        }
        if (twoRegions) {
            const float warp = choice.alterScale ? 0.76923076923076923077f : 1.0f;
            const int count1 = roundedBandCount(halfBands * warp, static_cast<float>(k2) / k1);
            std::vector<int> widths1 = geometricWidths(k1, k2, count1);
            const int smallest = *std::min_element(widths1.begin(), widths1.end());
            if (smallest < widths0.back()) {
                std::sort(widths1.begin(), widths1.end());
                const int change = std::min(widths0.back() - widths1.front(),
                                            (widths1.back() - widths1.front()) / 2);
                widths1.front() += change;
                widths1.back() -= change;
            }
            std::sort(widths1.begin(), widths1.end());
            for (int width : widths1) {
                if (width <= 0)
                    return false;
                master.push_back(master.back() + width);
            }
        }
    }
    const int bandCount = static_cast<int>(master.size()) - 1;
    return bandCount > 0 && choice.crossoverIndex < bandCount;
}

bool FrequencyTables::makeDerived(int sbrRate, const BandChoice& choice)
{
    high.assign(master.begin() + choice.crossoverIndex, master.end());
    const int highCount = static_cast<int>(high.size()) - 1;
    const int lowCount = (highCount + 1) >> 1;
    kx = high.front();
    m = high.back() - kx;
    if (kx + m > 64 || kx > 32)
        return false;
    low.clear();
    low.push_back(high.front());
    const int odd = highCount & 1;
    for (int k = 1; k <= lowCount; ++k)
        low.push_back(high[static_cast<std::size_t>(2 * k - odd)]);
    const int noiseCount = std::max(
        1,
        static_cast<int>(std::lrint(static_cast<float>(choice.noiseBands) *
                                    std::log2(static_cast<float>(k2) / static_cast<float>(kx)))));
    if (noiseCount > 5)
        return false;
    noise.clear();
    noise.push_back(low.front());
    int index = 0;
    for (int k = 1; k <= noiseCount; ++k) {
        index += (lowCount - index) / (noiseCount + 1 - k);
        noise.push_back(low[static_cast<std::size_t>(index)]);
    }
    (void)sbrRate;
    return true;
}

bool FrequencyTables::makePatches(int sbrRate)
{
    patches.clear();
    const int masterCount = static_cast<int>(master.size()) - 1;
    int msb = k0;
    int usb = kx;
    const int goal = ((1000 << 11) + (sbrRate >> 1)) / sbrRate;
    int k = masterCount;
    if (goal < kx + m) {
        k = 0;
        while (master[static_cast<std::size_t>(k)] < goal)
            ++k;
    }
    int sb = 0;
    int guard = 0;
    do {
        if (++guard > 16)
            return false;
        int odd = 0;
        int j = k;
        for (;;) {
            sb = master[static_cast<std::size_t>(j)];
            odd = (sb + k0) & 1;
            if (sb <= k0 - 1 + msb - odd)
                break;
            --j;
            if (j < 0)
                return false;
        }
        const int count = std::max(sb - usb, 0);
        if (count > 0) {
            patches.push_back(Patch{k0 - odd - count, count});
            usb = sb;
            msb = sb;
        } else {
            msb = kx;
        }
        if (master[static_cast<std::size_t>(k)] - sb < 3)
            k = masterCount;
    } while (sb != kx + m);
    if (patches.size() > 1 && patches.back().count < 3)
        patches.pop_back();
    return !patches.empty() && patches.size() <= 6;
}

int FrequencyTables::sourceOf(int k) const
{
    int first = kx;
    for (const Patch& patch : patches) {
        if (k < first + patch.count)
            return patch.sourceStart + (k - first);
        first += patch.count;
    }
    // Above the last patch the decoder leaves the band empty; the nearest source will do.
    return std::max(0, kx - 1);
}

BandChoice FrequencyTables::choose(int sbrRate, double crossoverHertz, double topHertz)
{
    const double subbandHertz = sbrRate / 128.0;
    BandChoice best;
    double bestCost = 1e9;
    for (int start = 0; start < 16; ++start) {
        for (int stop = 0; stop < 16; ++stop) {
            BandChoice choice;
            choice.startIndex = start;
            choice.stopIndex = stop;
            const std::optional<FrequencyTables> tables = make(sbrRate, choice);
            if (!tables)
                continue;
            const double cost = std::abs(tables->kx * subbandHertz - crossoverHertz) * 2.0 +
                                std::abs(tables->k2 * subbandHertz - topHertz);
            if (cost < bestCost) {
                bestCost = cost;
                best = choice;
            }
        }
    }
    return best;
}

} // namespace Platform::Sbr
