// SPDX-License-Identifier: GPL-3.0-or-later
// Resamples (where the rate changes), packs and writes a PCM stream on a thread of its own, so
// that the conversion and the file writes run beside the reading instead of after it. Blocks are
// converted and handed to the sink in the order they were submitted. A few blocks at most are in
// flight; each holds its source buffer until it is converted (the reader's pool waits for it) and
// reuses its bytes. One writer thread submits; the sink runs on the conversion thread only, and
// nothing else may touch what the sink writes to while the thread is alive.
#pragma once

#include "platform/media/MediaError.h"
#include "platform/media/SampleBuffer.h"
#include "platform/media/internal/ChannelGroupResampler.h"
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
    PcmConversionThread(ResamplerPtr resampler, const PcmPacker& packer, int outputChannels,
                        BlockSink sink);
    // For interleaved float whose rate alone changes: the channels are split in two groups, the
    // first resampled on the submitting thread as it submits, the rest on the conversion thread,
    // so that two cores share the resampling. The samples are those of one resampler.
    PcmConversionThread(int inputRate, int outputRate, const PcmPacker& packer, int channels,
                        BlockSink sink);
    // Stops after the block in hand; what is still queued is dropped.
    ~PcmConversionThread();
    PcmConversionThread(const PcmConversionThread&) = delete;
    PcmConversionThread& operator=(const PcmConversionThread&) = delete;

    // Queues `buffer`, waiting while every slot is taken. Throws the MediaError of a block that
    // failed (its conversion or the sink); after a failure no later block reaches the sink.
    void submit(std::shared_ptr<const SampleBuffer> buffer);
    // Converts what the resampler still holds and waits until every block is written. Throws the
    // first failure's MediaError. The sink is not called again afterwards.
    void finish();

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
        // Split channels: the first group's samples, resampled by the submitting thread.
        std::vector<float> front;
        int frontFrames = 0;
    };

    void queue(std::shared_ptr<const SampleBuffer> buffer, bool drains);
    // Takes the oldest block back once it is done, waiting for it when `wait` says so; false
    // when it is not done and `wait` is false. Throws the block's MediaError.
    bool reclaimOldest(bool wait);
    void run();
    void process(Block& block);
    void convert(Block& block);
    // Packs the block's float buffer as it is.
    void pack(Block& block);
    // Resamples into the staging floats and packs them after the block's bytes.
    int convertInto(Block& block, const std::uint8_t* input, int inputFrames);
    // Split channels: the first group on the submitting thread, before the block is queued.
    void convertFront(Block& block);
    // Split channels: the second group here, then both groups into the block's bytes.
    void convertBack(Block& block);

    void start();

    ResamplerPtr m_resampler;
    std::unique_ptr<ChannelGroupResampler> m_front;
    std::unique_ptr<ChannelGroupResampler> m_back;
    const PcmPacker m_packer;
    const int m_channels;
    const BlockSink m_sink;
    std::vector<float> m_staging;
    std::array<Block, slotCount> m_blocks;
    std::int64_t m_submitted = 0;
    std::int64_t m_reclaimed = 0;
    // The conversion thread's own: the failure that keeps later blocks from the sink.
    std::optional<MediaError> m_failure;

    std::mutex m_mutex;
    std::condition_variable m_workAvailable;
    std::condition_variable m_blockDone;
    std::int64_t m_converted = 0;
    bool m_stopping = false;
    bool m_converterWaiting = false; // the conversion thread sleeps on m_workAvailable
    bool m_writerWaiting = false;    // the submitting thread sleeps on m_blockDone
    std::thread m_thread;
};

} // namespace Platform::Internal
