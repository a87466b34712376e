// SPDX-License-Identifier: GPL-3.0-or-later
// Encodes an audio stream's chunks on several cores and gives their packets back in stream
// order. The writer's thread fills a chunk, submits it and writes out what is finished; workers
// (started at the first submit) encode chunks, each with an encoder of its own. A fixed ring of
// chunk slots bounds the memory whatever the stream's length. One writer thread calls it.
#pragma once

#include "platform/media/internal/EncodeChunk.h"
#include "platform/media/internal/FfmpegPointers.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace Platform::Internal {

class ChunkEncoderPool
{
public:
    using ContextFactory = std::function<CodecContextPtr()>;
    using PacketSink = std::function<void(AVPacket*)>;

    struct Shape
    {
        AVSampleFormat format = AV_SAMPLE_FMT_NONE;
        int sampleRate = 0;
        const AVChannelLayout* layout = nullptr;
        int frameSamples = 0;
        int framesPerChunk = 0;
    };

    // `workers` threads, `slotCount` chunks at most in the ring (at least workers + 2). With
    // `freshEncoderPerChunk` every chunk starts a new encoder (its state must not come from
    // another part of the stream); otherwise each worker keeps one.
    ChunkEncoderPool(int workers, int slotCount, const Shape& shape, ContextFactory makeContext,
                     bool freshEncoderPerChunk);
    // Stops the workers (a chunk being encoded is finished first) and drops what is queued.
    ~ChunkEncoderPool();
    ChunkEncoderPool(const ChunkEncoderPool&) = delete;
    ChunkEncoderPool& operator=(const ChunkEncoderPool&) = delete;

    // The slot for chunk `sequence` (submitted in order from 0), emptied and ready to fill. If
    // the ring is full, the oldest chunks are waited for and written out first. Throws the
    // MediaError of a chunk that failed or of the sink.
    EncodeChunk& acquire(std::int64_t sequence, const PacketSink& sink);
    // Queues the filled chunk `sequence` for the workers.
    void submit(std::int64_t sequence);
    // Chunk `sequence` was encoded on the calling thread: nothing of it is left to write.
    void skip(std::int64_t sequence);
    // Writes out the finished chunks at the head of the ring without waiting.
    void writeFinished(const PacketSink& sink);
    // Waits for every submitted chunk and writes them all out.
    void writeAll(const PacketSink& sink);

private:
    struct Slot
    {
        EncodeChunk chunk;
        bool done = false;
    };

    void startWorkers();
    void work(int worker);
    void encode(EncodeChunk& chunk, CodecContextPtr& context);
    // Receives the encoder's packets into the chunk, keeping those in its range.
    void receive(EncodeChunk& chunk, AVCodecContext* context);
    // Writes out the oldest unwritten chunk; false when it is not finished and `wait` is false.
    bool writeOldest(const PacketSink& sink, bool wait);
    void allocateFrames(EncodeChunk& chunk);

    const int m_workerCount;
    const Shape m_shape;
    const ContextFactory m_makeContext;
    const bool m_freshEncoderPerChunk;
    std::vector<Slot> m_slots;
    std::int64_t m_submitted = 0;
    std::int64_t m_written = 0;

    std::mutex m_mutex;
    std::condition_variable m_workAvailable;
    std::condition_variable m_chunkDone;
    std::deque<Slot*> m_queue;
    bool m_stopping = false;
    std::vector<std::thread> m_threads;
};

} // namespace Platform::Internal
