// SPDX-License-Identifier: GPL-3.0-or-later
// The high band's frequency tables, worked out from the header's start, stop and crossover
// choices exactly as a decoder works them out: the master table, the high- and low-resolution
// envelope bands, the noise-floor bands and the patches that copy the low band upwards. All
// borders are 64-band filter-bank subbands. Pure; any thread.
#pragma once

#include <optional>
#include <vector>

namespace Platform::Sbr {

struct BandChoice
{
    int startIndex = 0;
    int stopIndex = 0;
    int crossoverIndex = 0;
    // The header's defaults, so that the short header suffices.
    int freqScale = 2;
    bool alterScale = true;
    int noiseBands = 2;
};

struct Patch
{
    // First low-band subband copied, and how many.
    int sourceStart = 0;
    int count = 0;
};

class FrequencyTables
{
public:
    // Nullopt when a decoder would refuse the choice at `sbrRate` (the output rate).
    static std::optional<FrequencyTables> make(int sbrRate, const BandChoice& choice);
    // The start and stop indices whose borders come nearest to `crossoverHertz` and
    // `topHertz` among those a decoder accepts.
    static BandChoice choose(int sbrRate, double crossoverHertz, double topHertz);

    int k0 = 0;
    int k2 = 0;
    // First subband of the high band, and how many subbands it spans.
    int kx = 0;
    int m = 0;
    std::vector<int> master;
    std::vector<int> high;
    std::vector<int> low;
    std::vector<int> noise;
    std::vector<Patch> patches;

    // Borders of the envelope bands at the given resolution (one more than the band count).
    const std::vector<int>& bands(bool highResolution) const { return highResolution ? high : low; }
    int bandCount(bool highResolution) const
    {
        return static_cast<int>(bands(highResolution).size()) - 1;
    }
    int noiseBandCount() const { return static_cast<int>(noise.size()) - 1; }
    // The low-band subband a decoder copies into high subband `k` (kx <= k < kx + m).
    int sourceOf(int k) const;

private:
    bool makeMaster(int sbrRate, const BandChoice& choice);
    bool makeDerived(int sbrRate, const BandChoice& choice);
    bool makePatches(int sbrRate);
};

} // namespace Platform::Sbr
