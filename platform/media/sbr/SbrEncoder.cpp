// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/sbr/SbrEncoder.h"

#include "platform/media/sbr/PsEncoder.h"

#include <stdexcept>

namespace Platform::Sbr {

namespace {

// A header every this many frames lets a player start mid-stream within a third of a second.
constexpr int headerInterval = 8;

FrequencyTables tablesFor(int outputRate, const BandChoice& choice)
{
    const std::optional<FrequencyTables> tables = FrequencyTables::make(outputRate, choice);
    if (!tables)
        throw std::invalid_argument("no high band for this rate");
    return *tables;
}

} // namespace

SbrEncoder::SbrEncoder(int outputRate, int inputChannels, bool parametricStereo,
                       const BandChoice& choice)
    : m_inputChannels(inputChannels)
    , m_parametricStereo(parametricStereo && inputChannels == 2)
    , m_tables(tablesFor(outputRate, choice))
    , m_analysers(static_cast<std::size_t>(m_parametricStereo ? 1 : inputChannels),
                  SbrFrameAnalyser(m_tables))
    , m_bitstream(m_tables, choice, m_parametricStereo ? 1 : inputChannels)
    , m_banks(static_cast<std::size_t>(inputChannels))
    , m_pending(static_cast<std::size_t>(inputChannels))
{
    const int coded = m_parametricStereo ? 1 : inputChannels;
    m_halvers.resize(static_cast<std::size_t>(coded));
    m_core.resize(static_cast<std::size_t>(coded));
    // Slots before the input began are silent.
    const int leading = SbrFrameAnalyser::slotsPerFrame + slotLead;
    m_slots.assign(static_cast<std::size_t>(coded), std::deque<Slot>(leading, Slot{}));
    if (m_parametricStereo) {
        m_stereo = std::make_unique<PsEncoder>();
        m_stereoSlots.assign(2, std::deque<Slot>(leading, Slot{}));
    }
}

SbrEncoder::~SbrEncoder() = default;

void SbrEncoder::push(const float* const* planes, int frames)
{
    constexpr std::size_t block = QmfAnalysis::bands;
    for (int ch = 0; ch < m_inputChannels; ++ch) {
        std::vector<float>& pending = m_pending[static_cast<std::size_t>(ch)];
        pending.insert(pending.end(), planes[ch], planes[ch] + frames);
    }
    std::size_t offset = 0;
    while (m_pending[0].size() - offset >= block) {
        processBlock(offset);
        offset += block;
    }
    for (std::vector<float>& pending : m_pending)
        pending.erase(pending.begin(), pending.begin() + static_cast<std::ptrdiff_t>(offset));
}

void SbrEncoder::processBlock(std::size_t offset)
{
    constexpr int block = QmfAnalysis::bands;
    std::vector<const float*> inputs;
    for (const std::vector<float>& pending : m_pending)
        inputs.push_back(pending.data() + offset);
    std::vector<Slot> slots(static_cast<std::size_t>(m_inputChannels));
    for (std::size_t ch = 0; ch < inputs.size(); ++ch)
        m_banks[ch].process(inputs[ch], slots[ch]);
    if (m_parametricStereo) {
        m_mix.resize(block);
        for (std::size_t i = 0; i < block; ++i)
            m_mix[i] = 0.5f * (inputs[0][i] + inputs[1][i]);
        m_halvers[0].process(m_mix.data(), block, m_core[0]);
        Slot mixed;
        for (std::size_t k = 0; k < mixed.size(); ++k)
            mixed[k] = 0.5f * (slots[0][k] + slots[1][k]);
        m_slots[0].push_back(mixed);
        m_stereoSlots[0].push_back(slots[0]);
        m_stereoSlots[1].push_back(slots[1]);
        return;
    }
    for (std::size_t ch = 0; ch < inputs.size(); ++ch) {
        m_halvers[ch].process(inputs[ch], block, m_core[ch]);
        m_slots[ch].push_back(slots[ch]);
    }
}

std::optional<BitWriter> SbrEncoder::nextFrame()
{
    constexpr int length = SbrFrameAnalyser::slotsPerFrame;
    constexpr int needed = SbrFrameAnalyser::slotsNeeded;
    if (static_cast<int>(m_slots[0].size()) < needed)
        return std::nullopt;
    std::vector<SbrFrame> frames;
    for (std::size_t ch = 0; ch < m_slots.size(); ++ch) {
        std::deque<Slot>& channel = m_slots[ch];
        const std::vector<Slot> window(channel.begin(), channel.begin() + needed);
        frames.push_back(m_analysers[ch].analyse(window.data()));
        channel.erase(channel.begin(), channel.begin() + length);
    }
    BitWriter stereo;
    if (m_stereo) {
        const std::vector<Slot> left(m_stereoSlots[0].begin(), m_stereoSlots[0].begin() + length);
        const std::vector<Slot> right(m_stereoSlots[1].begin(), m_stereoSlots[1].begin() + length);
        stereo =
            m_stereo->code(left.data(), right.data(), length, m_frameCount % headerInterval == 0);
        for (std::deque<Slot>& channel : m_stereoSlots)
            channel.erase(channel.begin(), channel.begin() + length);
    }
    const bool header = m_frameCount % headerInterval == 0;
    ++m_frameCount;
    return m_bitstream.write(frames, header, stereo);
}

} // namespace Platform::Sbr
