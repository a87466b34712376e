// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the high band's side information of one raw data block: the header when asked, then
// the single- or two-channel data with each envelope and noise floor coded as differences in
// frequency or in time, whichever is shorter; two channels with the same grid go as a level and a
// balance. Keeps the levels a decoder holds, to code the
// next frame's time differences against. One owner; any thread.
#pragma once

#include "platform/media/sbr/BitWriter.h"
#include "platform/media/sbr/FrequencyTables.h"
#include "platform/media/sbr/SbrFrame.h"

#include <vector>

namespace Platform::Sbr {

class SbrBitstream
{
public:
    SbrBitstream(const FrequencyTables& tables, const BandChoice& choice, int channels);

    // The payload of one fill element after its extension type: header flag, header when
    // `withHeader`, the data of one frame per channel, and `extension` (the stereo parameters,
    // may be empty) as extended data. Levels in `frames` may be adjusted to what can be coded.
    BitWriter write(std::vector<SbrFrame>& frames, bool withHeader, const BitWriter& extension);

private:
    struct Coded
    {
        std::vector<bool> envelopeInTime;
        std::vector<bool> noiseInTime;
        BitWriter envelopes;
        BitWriter noise;
    };
    struct History
    {
        std::vector<int> envelope;
        std::vector<int> noise;
    };
    // How one channel's levels are coded: plain levels, or a coupled pair's balance.
    struct Books
    {
        Codebook envelopeFrequency;
        Codebook envelopeTime;
        int envelopeStartBits;
        Codebook noiseFrequency;
        Codebook noiseTime;
    };

    void writeHeader(BitWriter& out) const;
    static void writeGrid(BitWriter& out, const SbrFrame& frame);
    Coded code(SbrFrame& frame, History& history, const Books& books) const;
    static bool sameGrid(const SbrFrame& first, const SbrFrame& second);
    // Turns a pair's levels into a level (in `left`) and a balance (in `right`, in the
    // halved units it is coded in).
    static void couple(SbrFrame& left, SbrFrame& right);
    static void codeLevels(std::vector<int>& values, const std::vector<int>& previous,
                           int startBits, Codebook frequencyBook, Codebook timeBook, bool& inTime,
                           BitWriter& out);
    static void writeExtension(BitWriter& out, const BitWriter& extension);

    FrequencyTables m_tables;
    BandChoice m_choice;
    std::vector<History> m_history;
    bool m_coupled = false;
};

} // namespace Platform::Sbr
