// SPDX-License-Identifier: GPL-3.0-or-later
// What one frame says about one channel's high band: its time grid, the quantised envelope and
// noise-floor levels, the inverse-filtering levels and which bands carry an added sinusoid.
// Plain data; any thread.
#pragma once

#include <vector>

namespace Platform::Sbr {

enum class FrameClass
{
    fixFix = 0,
    fixVar = 1,
    varFix = 2,
    varVar = 3,
};

struct SbrFrame
{
    // Envelopes of equal length (fixFix, 1, 2 or 4 of them) or borders set freely (varVar).
    FrameClass frameClass = FrameClass::fixFix;
    // Envelope borders in frame time slots (two filter-bank slots each), first to last. With
    // varVar the first is 0…3 (where the previous frame ended) and the last 16…19.
    std::vector<int> borders{0, 16};
    // varVar: envelope lengths counted from the first border onwards and from the last border
    // backwards (2, 4, 6 or 8 slots each, at most three of each, the first of
    // trailingLengths ending at the last border); the envelope between them takes the rest.
    std::vector<int> leadingLengths;
    std::vector<int> trailingLengths;
    // Which envelope starts at a transient, counted as the grid's pointer (0 = none).
    int pointer = 0;
    bool highResolution = true;
    // Quantised levels, absolute, per envelope and band (steps of 1.5 dB).
    std::vector<std::vector<int>> envelopes;
    // Quantised noise floors, absolute (0…30), per noise envelope and noise band.
    std::vector<std::vector<int>> noiseFloors;
    // Per noise band, 0 (off) … 3 (strong).
    std::vector<int> inverseFiltering;
    // Per high-resolution band; empty when no band carries one.
    std::vector<bool> sinusoids;

    int envelopeCount() const { return static_cast<int>(borders.size()) - 1; }
    int noiseEnvelopeCount() const { return envelopeCount() > 1 ? 2 : 1; }
};

} // namespace Platform::Sbr
