// SPDX-License-Identifier: GPL-3.0-or-later
// Resamples (where the rate changes) and packs a PCM stream on a thread of its own, so that the
// conversion runs beside the reading instead of after it; the packed blocks come back in order to
// the writer's thread, which writes them. A few blocks at most are in flight; each holds its source
// buffer until it is converted (the reader's pool waits for it) and reuses its bytes. One writer
// thread calls it.
#pragma once

#include "platform/media/MediaError.h"
#include "platform/media/SampleBuffer.h"
#include "platform/media/internal/FfmpegPointers.h"
#include "platform/media/internal/PcmPacker.h"

#include <array>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace Platform::Internal {

class PcmConversionThread
{
public:
    // Writes `frames` frames of packed bytes to the file. Throws MediaError.
    using BlockSink = std::function<void(const std::uint8_t* bytes, int frames)>;

    // Takes over `resampler`, set up to deliver interleaved float at the output's rate; without
    // one, buffers must be interleaved float at the output's rate and channel count already.
    PcmConversionThread(ResamplerPtr resampler, const PcmPacker& packer, int outputChannels);
    // Stops after the block in hand; what is still queued is dropped.
    ~PcmConversionThread();
    PcmConversionThread(const PcmConversionThread&) = delete;
    PcmConversionThread& operator=(const PcmConversionThread&) = delete;

    // Queues `buffer`; writes out the blocks already converted, waiting when every slot is taken.
    // Throws the MediaError of a failed conversion or of the sink.
    void submit(std::shared_ptr<const SampleBuffer> buffer, const BlockSink& sink);
    // Converts what the resampler still holds and writes everything out.
    void finish(const BlockSink& sink);

private:
    static constexpr std::size_t slotCount = 4;

    struct Block
    {
        std::shared_ptr<const SampleBuffer> input;
        bool drains = false;
        std::vector<std::uint8_t> bytes;
        int frames = 0;
        std::optional<MediaError> error;
        bool done = false;
    };

    void queue(std::shared_ptr<const SampleBuffer> buffer, bool drains, const BlockSink& sink);
    bool writeOldest(const BlockSink& sink, bool wait);
    void run();
    void convert(Block& block);
    // Packs the block's float buffer as it is.
    void pack(Block& block);
    // Resamples into the staging floats and packs them after the block's bytes.
    int convertInto(Block& block, const std::uint8_t* input, int inputFrames);

    ResamplerPtr m_resampler;
    const PcmPacker m_packer;
    const int m_channels;
    std::vector<float> m_staging;
    std::array<Block, slotCount> m_blocks;
    std::int64_t m_submitted = 0;
    std::int64_t m_written = 0;

    std::mutex m_mutex;
    std::condition_variable m_workAvailable;
    std::condition_variable m_blockDone;
    std::int64_t m_converted = 0;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace Platform::Internal
