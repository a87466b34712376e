// SPDX-License-Identifier: GPL-3.0-or-later
// Reuses sample buffers once their users have let go of them, so that a reader hands out
// buffers without allocating for each one. The pool keeps a few buffers; when all are in use
// it makes a fresh one outside the pool. One thread at a time (the reader's lock).
#pragma once

#include "platform/media/SampleBuffer.h"

#include <memory>
#include <vector>

namespace Platform::Internal {

class SampleBufferPool
{
public:
    static constexpr int pooledBuffers = 8;

    // A buffer for `format` and `channelCount` with room for at least `capacityFrames`,
    // valid, with no frames yet. Nobody else holds it.
    std::shared_ptr<SampleBuffer> acquire(SampleBuffer::SampleFormat format, int sampleRate,
                                          int channelCount, int capacityFrames);

private:
    std::vector<std::shared_ptr<SampleBuffer>> m_buffers;
};

} // namespace Platform::Internal
