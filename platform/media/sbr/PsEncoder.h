// SPDX-License-Identifier: GPL-3.0-or-later
// Measures a stereo frame's image for parametric stereo: per stereo band, the level difference
// and the coherence of left and right, and writes them as the stereo extension of the high
// band's data. One owner; any thread.
#pragma once

#include "platform/media/sbr/BitWriter.h"
#include "platform/media/sbr/SbrFrameAnalyser.h"

#include <vector>

namespace Platform::Sbr {

class PsEncoder
{
public:
    // Stereo bands coded per frame.
    static constexpr int bandCount = 20;

    // Codes `count` slots of `left` and `right`; `withHeader` repeats the stereo header.
    BitWriter code(const Slot* left, const Slot* right, int count, bool withHeader);

    // The first 64-band subband of every stereo band, and the end of the last.
    static const std::vector<int>& bandBorders();

private:
    static void writeValues(BitWriter& out, std::vector<int>& values, std::vector<int>& previous,
                            Codebook frequencyBook, Codebook timeBook);

    std::vector<int> m_previousLevels;
    std::vector<int> m_previousCoherences;
};

} // namespace Platform::Sbr
