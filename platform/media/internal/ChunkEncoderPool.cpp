// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/ChunkEncoderPool.h"

#include "platform/media/internal/FfmpegError.h"

#include <QString>

#include <algorithm>

namespace Platform::Internal {

ChunkEncoderPool::ChunkEncoderPool(int workers, int slotCount, const Shape& shape,
                                   ContextFactory makeContext, bool freshEncoderPerChunk)
    : m_workerCount(std::max(1, workers))
    , m_shape(shape)
    , m_makeContext(std::move(makeContext))
    , m_freshEncoderPerChunk(freshEncoderPerChunk)
    , m_slots(static_cast<std::size_t>(std::max(slotCount, m_workerCount + 2)))
{}

ChunkEncoderPool::~ChunkEncoderPool()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
        m_queue.clear();
    }
    m_workAvailable.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

void ChunkEncoderPool::allocateFrames(EncodeChunk& chunk)
{
    if (!chunk.frames.empty())
        return;
    chunk.frames.reserve(static_cast<std::size_t>(m_shape.framesPerChunk));
    for (int index = 0; index < m_shape.framesPerChunk; ++index) {
        FramePtr frame(av_frame_alloc());
        if (!frame)
            throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));
        frame->format = m_shape.format;
        frame->sample_rate = m_shape.sampleRate;
        frame->nb_samples = m_shape.frameSamples;
        av_channel_layout_copy(&frame->ch_layout, m_shape.layout);
        const int result = av_frame_get_buffer(frame.get(), 0);
        if (result < 0)
            throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot make an audio frame"));
        chunk.frames.push_back(std::move(frame));
    }
}

EncodeChunk& ChunkEncoderPool::acquire(std::int64_t sequence, const PacketSink& sink)
{
    const auto slotCount = static_cast<std::int64_t>(m_slots.size());
    while (sequence - m_written >= slotCount)
        writeOldest(sink, true);
    Slot& slot = m_slots[static_cast<std::size_t>(sequence % slotCount)];
    allocateFrames(slot.chunk);
    slot.done = false;
    slot.chunk.frameCount = 0;
    slot.chunk.lastFrameSamples = m_shape.frameSamples;
    slot.chunk.packetCount = 0;
    slot.chunk.error.reset();
    slot.chunk.drains = false;
    return slot.chunk;
}

void ChunkEncoderPool::submit(std::int64_t sequence)
{
    Slot& slot =
        m_slots[static_cast<std::size_t>(sequence % static_cast<std::int64_t>(m_slots.size()))];
    if (m_threads.empty())
        startWorkers();
    {
        const std::lock_guard lock(m_mutex);
        m_queue.push_back(&slot);
    }
    m_submitted = sequence + 1;
    m_workAvailable.notify_one();
}

void ChunkEncoderPool::skip(std::int64_t sequence)
{
    Slot& slot =
        m_slots[static_cast<std::size_t>(sequence % static_cast<std::int64_t>(m_slots.size()))];
    slot.chunk.packetCount = 0;
    const std::lock_guard lock(m_mutex);
    slot.done = true;
    m_submitted = sequence + 1;
}

void ChunkEncoderPool::writeFinished(const PacketSink& sink)
{
    while (m_written < m_submitted && writeOldest(sink, false)) {
    }
}

void ChunkEncoderPool::writeAll(const PacketSink& sink)
{
    while (m_written < m_submitted)
        writeOldest(sink, true);
}

bool ChunkEncoderPool::writeOldest(const PacketSink& sink, bool wait)
{
    Slot& slot =
        m_slots[static_cast<std::size_t>(m_written % static_cast<std::int64_t>(m_slots.size()))];
    {
        std::unique_lock lock(m_mutex);
        if (!slot.done && !wait)
            return false;
        m_chunkDone.wait(lock, [&] { return slot.done; });
    }
    EncodeChunk& chunk = slot.chunk;
    if (chunk.error)
        throw *chunk.error;
    for (int index = 0; index < chunk.packetCount; ++index) {
        AVPacket* packet = chunk.packets[static_cast<std::size_t>(index)].get();
        sink(packet);
        av_packet_unref(packet);
    }
    chunk.packetCount = 0;
    ++m_written;
    return true;
}

void ChunkEncoderPool::startWorkers()
{
    m_threads.reserve(static_cast<std::size_t>(m_workerCount));
    for (int worker = 0; worker < m_workerCount; ++worker)
        m_threads.emplace_back([this, worker] { work(worker); });
}

void ChunkEncoderPool::work([[maybe_unused]] int worker)
{
    CodecContextPtr context;
    for (;;) {
        Slot* slot = nullptr;
        {
            std::unique_lock lock(m_mutex);
            m_workAvailable.wait(lock, [&] { return m_stopping || !m_queue.empty(); });
            if (m_stopping)
                return;
            slot = m_queue.front();
            m_queue.pop_front();
        }
        encode(slot->chunk, context);
        {
            const std::lock_guard lock(m_mutex);
            slot->done = true;
        }
        m_chunkDone.notify_all();
    }
}

void ChunkEncoderPool::encode(EncodeChunk& chunk, CodecContextPtr& context)
{
    try {
        if (!context || m_freshEncoderPerChunk)
            context = m_makeContext();
        for (int index = 0; index < chunk.frameCount; ++index) {
            AVFrame* frame = chunk.frames[static_cast<std::size_t>(index)].get();
            frame->nb_samples =
                index + 1 == chunk.frameCount ? chunk.lastFrameSamples : m_shape.frameSamples;
            frame->pts = chunk.firstPts + static_cast<std::int64_t>(index) * m_shape.frameSamples;
            const int result = avcodec_send_frame(context.get(), frame);
            if (result < 0)
                throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot encode audio"));
            receive(chunk, context.get());
        }
        if (chunk.drains) {
            const int result = avcodec_send_frame(context.get(), nullptr);
            if (result < 0)
                throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot encode audio"));
            receive(chunk, context.get());
        }
        if (m_freshEncoderPerChunk || chunk.drains)
            context.reset();
    } catch (const MediaError& error) {
        chunk.error = error;
        context.reset();
    }
}

void ChunkEncoderPool::receive(EncodeChunk& chunk, AVCodecContext* context)
{
    for (;;) {
        if (static_cast<std::size_t>(chunk.packetCount) == chunk.packets.size()) {
            chunk.packets.emplace_back(av_packet_alloc());
            if (!chunk.packets.back())
                throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));
        }
        AVPacket* packet = chunk.packets[static_cast<std::size_t>(chunk.packetCount)].get();
        const int result = avcodec_receive_packet(context, packet);
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return;
        if (result < 0)
            throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot encode audio"));
        if (packet->pts >= chunk.keepFrom && packet->pts < chunk.keepUntil)
            ++chunk.packetCount;
        else
            av_packet_unref(packet);
    }
}

} // namespace Platform::Internal
