// SPDX-License-Identifier: GPL-3.0-or-later
// The high-band half of a high-efficiency coder: takes the full-rate input, gives the half-rate
// signal for the core coder and, for every core frame, the side information a decoder needs to
// rebuild the band above the core (and, with parametric stereo, the stereo image from one core
// channel). One owner; any thread.
#pragma once

#include "platform/media/sbr/BitWriter.h"
#include "platform/media/sbr/FrequencyTables.h"
#include "platform/media/sbr/HalfRateFilter.h"
#include "platform/media/sbr/QmfAnalysis.h"
#include "platform/media/sbr/SbrBitstream.h"
#include "platform/media/sbr/SbrFrameAnalyser.h"

#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace Platform::Sbr {

class PsEncoder;

class SbrEncoder
{
public:
    // Output samples per core frame.
    static constexpr int frameLength = 2048;
    // Filter-bank slots between a frame's first slot and the first slot a decoder applies its
    // envelopes to, as the decoder's own delays place them.
    static constexpr int slotLead = 7;

    // `inputChannels` 1 or 2; `parametricStereo` needs 2 and makes one core channel.
    SbrEncoder(int outputRate, int inputChannels, bool parametricStereo, const BandChoice& choice);
    ~SbrEncoder();

    int coreChannels() const { return static_cast<int>(m_core.size()); }
    const FrequencyTables& tables() const { return m_tables; }
    // Takes `frames` full-rate samples of every input channel.
    void push(const float* const* planes, int frames);
    // Half-rate samples waiting for the core coder, one vector per core channel; the caller
    // removes what it takes.
    std::vector<std::vector<float>>& core() { return m_core; }
    // The side information of the next core frame (what follows a fill element's extension
    // type), or nullopt when the input does not reach far enough yet.
    std::optional<BitWriter> nextFrame();

private:
    // Codes the block of 64 samples at `offset` in every pending vector.
    void processBlock(std::size_t offset);

    int m_inputChannels;
    bool m_parametricStereo;
    FrequencyTables m_tables;
    // One per coded channel: each keeps where its last frame ended.
    std::vector<SbrFrameAnalyser> m_analysers;
    SbrBitstream m_bitstream;
    std::unique_ptr<PsEncoder> m_stereo;
    std::vector<QmfAnalysis> m_banks;
    std::vector<HalfRateFilter> m_halvers;
    // Input waiting for a whole block of 64 samples, per input channel.
    std::vector<std::vector<float>> m_pending;
    // Slots not yet coded: per coded channel (the downmix with parametric stereo).
    std::vector<std::deque<Slot>> m_slots;
    // With parametric stereo, the left and right slots.
    std::vector<std::deque<Slot>> m_stereoSlots;
    std::vector<std::vector<float>> m_core;
    std::vector<float> m_mix;
    int m_frameCount = 0;
};

} // namespace Platform::Sbr
