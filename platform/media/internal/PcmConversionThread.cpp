// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/PcmConversionThread.h"

#include "platform/media/internal/FfmpegError.h"

#include <QString>

namespace Platform::Internal {

PcmConversionThread::PcmConversionThread(ResamplerPtr resampler, const PcmPacker& packer,
                                         int outputChannels)
    : m_resampler(std::move(resampler))
    , m_packer(packer)
    , m_channels(outputChannels)
{
    m_thread = std::thread([this] { run(); });
}

PcmConversionThread::~PcmConversionThread()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_workAvailable.notify_all();
    m_thread.join();
}

void PcmConversionThread::submit(std::shared_ptr<const SampleBuffer> buffer, const BlockSink& sink)
{
    queue(std::move(buffer), false, sink);
    while (m_written < m_submitted && writeOldest(sink, false)) {
    }
}

void PcmConversionThread::finish(const BlockSink& sink)
{
    queue(nullptr, true, sink);
    while (m_written < m_submitted)
        writeOldest(sink, true);
}

void PcmConversionThread::queue(std::shared_ptr<const SampleBuffer> buffer, bool drains,
                                const BlockSink& sink)
{
    while (m_submitted - m_written >= static_cast<std::int64_t>(slotCount))
        writeOldest(sink, true);
    Block& block = m_blocks[static_cast<std::size_t>(m_submitted) % slotCount];
    block.input = std::move(buffer);
    block.drains = drains;
    block.frames = 0;
    block.error.reset();
    {
        const std::lock_guard lock(m_mutex);
        block.done = false;
        ++m_submitted;
    }
    m_workAvailable.notify_one();
}

bool PcmConversionThread::writeOldest(const BlockSink& sink, bool wait)
{
    Block& block = m_blocks[static_cast<std::size_t>(m_written) % slotCount];
    {
        std::unique_lock lock(m_mutex);
        if (!block.done && !wait)
            return false;
        m_blockDone.wait(lock, [&] { return block.done; });
    }
    if (block.error)
        throw *block.error;
    if (block.frames > 0)
        sink(block.bytes.data(), block.frames);
    ++m_written;
    return true;
}

void PcmConversionThread::run()
{
    for (;;) {
        Block* block = nullptr;
        {
            std::unique_lock lock(m_mutex);
            m_workAvailable.wait(lock, [&] { return m_stopping || m_converted < m_submitted; });
            if (m_stopping)
                return;
            block = &m_blocks[static_cast<std::size_t>(m_converted) % slotCount];
        }
        convert(*block);
        {
            const std::lock_guard lock(m_mutex);
            block->done = true;
            ++m_converted;
        }
        m_blockDone.notify_all();
    }
}

void PcmConversionThread::convert(Block& block)
{
    try {
        if (!m_resampler) {
            if (!block.drains)
                pack(block);
        } else if (block.drains) {
            while (convertInto(block, nullptr, 0) > 0) {
            }
        } else {
            convertInto(block, reinterpret_cast<const std::uint8_t*>(block.input->bytes()),
                        block.input->frameCount());
        }
    } catch (const MediaError& error) {
        block.error = error;
    }
    // The reader may fill the buffer again.
    block.input.reset();
}

void PcmConversionThread::pack(Block& block)
{
    const SampleBuffer& input = *block.input;
    const std::size_t needed = static_cast<std::size_t>(input.frameCount()) *
                               static_cast<std::size_t>(m_channels) *
                               static_cast<std::size_t>(m_packer.bytesPerSample());
    if (block.bytes.size() < needed)
        block.bytes.resize(needed);
    m_packer.pack(input.data(), input.frameCount() * m_channels, block.bytes.data());
    block.frames = input.frameCount();
}

int PcmConversionThread::convertInto(Block& block, const std::uint8_t* input, int inputFrames)
{
    // The resampler always gets room for all it can give.
    const int room = swr_get_out_samples(m_resampler.get(), inputFrames);
    if (room < 0)
        throw mediaErrorFromFfmpeg(room, QStringLiteral("Cannot resample audio"));
    if (room == 0)
        return 0;
    const std::size_t samples =
        static_cast<std::size_t>(room) * static_cast<std::size_t>(m_channels);
    if (m_staging.size() < samples)
        m_staging.resize(samples);
    auto* output = reinterpret_cast<std::uint8_t*>(m_staging.data());
    const int converted =
        swr_convert(m_resampler.get(), &output, room, input ? &input : nullptr, inputFrames);
    if (converted < 0)
        throw mediaErrorFromFfmpeg(converted, QStringLiteral("Cannot resample audio"));
    const std::size_t frameBytes =
        static_cast<std::size_t>(m_channels) * static_cast<std::size_t>(m_packer.bytesPerSample());
    const std::size_t offset = static_cast<std::size_t>(block.frames) * frameBytes;
    const std::size_t needed = offset + static_cast<std::size_t>(converted) * frameBytes;
    if (block.bytes.size() < needed)
        block.bytes.resize(needed);
    m_packer.pack(m_staging.data(), converted * m_channels, block.bytes.data() + offset);
    block.frames += converted;
    return converted;
}

} // namespace Platform::Internal
