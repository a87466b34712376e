// SPDX-License-Identifier: GPL-3.0-or-later
// One stretch of an audio stream on its way through a parallel encode: the encoder-ready frames
// the writer's thread filled, which of the packets made from them belong to the file, and those
// packets once a worker has made them. Media layer internals only; the pool hands a chunk to one
// thread at a time.
#pragma once

#include "platform/media/MediaError.h"
#include "platform/media/internal/FfmpegPointers.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace Platform::Internal {

struct EncodeChunk
{
    // Whole encoder frames, allocated once and refilled for every chunk that uses this slot.
    std::vector<FramePtr> frames;
    // Frames in use; the last one holds `lastFrameSamples` samples (a whole frame unless the
    // stream ends inside it).
    int frameCount = 0;
    int lastFrameSamples = 0;
    // Time of the first sample, in samples of the stream.
    std::int64_t firstPts = 0;
    // Packets whose time lies in [keepFrom, keepUntil) go to the file; the others were made only
    // to bring the encoder into the state a serial encode has there, and are dropped.
    std::int64_t keepFrom = std::numeric_limits<std::int64_t>::min();
    std::int64_t keepUntil = std::numeric_limits<std::int64_t>::max();
    // The stream's last chunk: the encoder is drained after it.
    bool drains = false;

    // Made by the worker. Packet objects are kept for the slot's next chunk.
    std::vector<PacketPtr> packets;
    int packetCount = 0;
    std::optional<MediaError> error;
};

} // namespace Platform::Internal
