// SPDX-License-Identifier: GPL-3.0-or-later
// Measures one frame of one channel's subband slots and says what the high band must carry:
// the time grid (one or two envelopes), the envelope levels, the noise floors and the
// inverse-filtering levels. One owner; any thread.
#pragma once

#include "platform/media/sbr/FrequencyTables.h"
#include "platform/media/sbr/SbrFrame.h"

#include <array>
#include <complex>
#include <vector>

namespace Platform::Sbr {

using Slot = std::array<std::complex<float>, 64>;

class SbrFrameAnalyser
{
public:
    // Filter-bank slots per frame.
    static constexpr int slotsPerFrame = 32;

    // Slots `analyse` looks at: the frame's own and the next frame's, to end the frame where a
    // transient starts the next one.
    static constexpr int slotsNeeded = 2 * slotsPerFrame;

    explicit SbrFrameAnalyser(const FrequencyTables& tables);
    // `slots` holds the frame's 32 slots and the next frame's 32, in order.
    SbrFrame analyse(const Slot* slots);

    // The quantised level (1.5 dB steps, 0…127) a decoder turns into mean subband power
    // `power` of our filter bank.
    static int quantisedLevel(double power);

private:
    std::vector<int> chooseBorders(const Slot* slots) const;
    // Where the high band's power jumps, in frame time slots from `firstSlot` on (filter-bank
    // slots), or -1.
    int transientAt(const std::vector<double>& power, int firstSlot, int endSlot) const;
    void placeAroundTransient(SbrFrame& frame, int transient) const;
    std::vector<int> envelope(const Slot* slots, int firstSlot, int endSlot) const;
    void measureNoise(const Slot* slots, SbrFrame& frame) const;
    // Flags the bands where a steady tone stands alone that copying the low band would not
    // bring; a decoder then puts the band's power into a sine on its middle subband.
    void findSinusoids(const Slot* slots, SbrFrame& frame) const;
    static double predictionErrorRatio(const Slot* slots, int count, int subband);

    FrequencyTables m_tables;
    // Where this frame's first envelope starts (the previous frame's last ran on to it).
    int m_leadingBorder = 0;
    // The high band's power in the slots just before this frame.
    std::vector<double> m_earlierPower;
};

} // namespace Platform::Sbr
