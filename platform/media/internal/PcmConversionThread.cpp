// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/PcmConversionThread.h"

#include "platform/media/internal/FfmpegError.h"

#include <QString>

#include <exception>

namespace Platform::Internal {

namespace {

MediaError unexpected(const std::exception& error)
{
    return MediaError::media(MediaError::unknown, QString::fromLocal8Bit(error.what()));
}

} // namespace

PcmConversionThread::PcmConversionThread(ResamplerPtr resampler, const PcmPacker& packer,
                                         int outputChannels, BlockSink sink)
    : m_resampler(std::move(resampler))
    , m_packer(packer)
    , m_channels(outputChannels)
    , m_sink(std::move(sink))
{
    start();
}

PcmConversionThread::PcmConversionThread(int inputRate, int outputRate, const PcmPacker& packer,
                                         int channels, BlockSink sink)
    : m_front(std::make_unique<ChannelGroupResampler>(inputRate, outputRate, 0, channels / 2))
    , m_back(std::make_unique<ChannelGroupResampler>(inputRate, outputRate, channels / 2,
                                                     channels - channels / 2))
    , m_packer(packer)
    , m_channels(channels)
    , m_sink(std::move(sink))
{
    start();
}

void PcmConversionThread::start()
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

void PcmConversionThread::submit(std::shared_ptr<const SampleBuffer> buffer)
{
    queue(std::move(buffer), false);
    while (m_reclaimed < m_submitted && reclaimOldest(false)) {
    }
}

void PcmConversionThread::finish()
{
    queue(nullptr, true);
    while (m_reclaimed < m_submitted)
        reclaimOldest(true);
}

void PcmConversionThread::queue(std::shared_ptr<const SampleBuffer> buffer, bool drains)
{
    while (m_submitted - m_reclaimed >= static_cast<std::int64_t>(slotCount))
        reclaimOldest(true);
    Block& block = m_blocks[static_cast<std::size_t>(m_submitted) % slotCount];
    block.input = std::move(buffer);
    block.drains = drains;
    block.frames = 0;
    block.error.reset();
    if (m_front)
        convertFront(block);
    bool wake = false;
    {
        const std::lock_guard lock(m_mutex);
        block.done = false;
        ++m_submitted;
        wake = m_converterWaiting;
    }
    // A wake-up costs more than packing a small block: only a thread that sleeps gets one.
    if (wake)
        m_workAvailable.notify_one();
}

bool PcmConversionThread::reclaimOldest(bool wait)
{
    Block& block = m_blocks[static_cast<std::size_t>(m_reclaimed) % slotCount];
    {
        std::unique_lock lock(m_mutex);
        if (!block.done && !wait)
            return false;
        m_writerWaiting = true;
        m_blockDone.wait(lock, [&] { return block.done; });
        m_writerWaiting = false;
    }
    ++m_reclaimed;
    if (block.error)
        throw *block.error;
    return true;
}

void PcmConversionThread::run()
{
    for (;;) {
        Block* block = nullptr;
        {
            std::unique_lock lock(m_mutex);
            m_converterWaiting = true;
            m_workAvailable.wait(lock, [&] { return m_stopping || m_converted < m_submitted; });
            m_converterWaiting = false;
            if (m_stopping)
                return;
            block = &m_blocks[static_cast<std::size_t>(m_converted) % slotCount];
        }
        process(*block);
        bool wake = false;
        {
            const std::lock_guard lock(m_mutex);
            block->done = true;
            ++m_converted;
            wake = m_writerWaiting;
        }
        if (wake)
            m_blockDone.notify_all();
    }
}

void PcmConversionThread::process(Block& block)
{
    if (m_failure) {
        block.error = m_failure;
    } else {
        convert(block);
        try {
            if (!block.error && block.frames > 0)
                m_sink(block.bytes.data(), block.frames);
        } catch (const MediaError& error) {
            block.error = error;
        } catch (const std::exception& error) {
            block.error = unexpected(error);
        }
        m_failure = block.error;
    }
    // The reader may fill the buffer again.
    block.input.reset();
}

void PcmConversionThread::convert(Block& block)
{
    try {
        if (m_back) {
            convertBack(block);
        } else if (!m_resampler) {
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
    } catch (const std::exception& error) {
        // Out of memory, most likely: it ends the conversion, not the program.
        block.error = unexpected(error);
    }
}

void PcmConversionThread::convertFront(Block& block)
{
    if (block.drains) {
        block.frontFrames = m_front->flush(block.front);
        return;
    }
    const SampleBuffer& input = *block.input;
    block.frontFrames = m_front->convert(input.data(), m_channels, input.frameCount(), block.front);
}

void PcmConversionThread::convertBack(Block& block)
{
    const int frames = block.drains ? m_back->flush(m_staging)
                                    : m_back->convert(block.input->data(), m_channels,
                                                      block.input->frameCount(), m_staging);
    // Each group's resampler took the same frames: each gives the same count back.
    if (frames != block.frontFrames)
        throw MediaError::media(
            MediaError::unknown,
            QStringLiteral("Cannot resample audio: the channels drifted apart"));
    const auto sampleBytes = static_cast<std::size_t>(m_packer.bytesPerSample());
    const std::size_t needed =
        static_cast<std::size_t>(frames) * static_cast<std::size_t>(m_channels) * sampleBytes;
    if (block.bytes.size() < needed)
        block.bytes.resize(needed);
    m_packer.packChannels(block.front.data(), frames, m_front->channelCount(), m_channels,
                          block.bytes.data());
    m_packer.packChannels(m_staging.data(), frames, m_back->channelCount(), m_channels,
                          block.bytes.data() +
                              static_cast<std::size_t>(m_back->firstChannel()) * sampleBytes);
    block.frames = frames;
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
