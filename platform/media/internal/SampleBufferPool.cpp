// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/SampleBufferPool.h"

#include <atomic>

namespace Platform::Internal {

namespace {

bool fits(const SampleBuffer& buffer, SampleBuffer::SampleFormat format, int sampleRate,
          int channelCount, int capacityFrames)
{
    return buffer.sampleFormat() == format && buffer.sampleRate() == sampleRate &&
           buffer.channelCount() == channelCount && buffer.capacityFrames() >= capacityFrames;
}

} // namespace

std::shared_ptr<SampleBuffer> SampleBufferPool::acquire(SampleBuffer::SampleFormat format,
                                                        int sampleRate, int channelCount,
                                                        int capacityFrames)
{
    for (std::shared_ptr<SampleBuffer>& buffer : m_buffers) {
        // Held by the pool alone: the last user has released it.
        if (buffer.use_count() != 1)
            continue;
        // Pairs with the release of the user's last reference, so its writes are seen here
        // before the block is filled again.
        std::atomic_thread_fence(std::memory_order_acquire);
        if (!fits(*buffer, format, sampleRate, channelCount, capacityFrames))
            buffer =
                std::make_shared<SampleBuffer>(format, sampleRate, channelCount, capacityFrames);
        buffer->setFrameCount(0);
        buffer->setValid(true);
        return buffer;
    }
    auto buffer = std::make_shared<SampleBuffer>(format, sampleRate, channelCount, capacityFrames);
    if (static_cast<int>(m_buffers.size()) < pooledBuffers)
        m_buffers.push_back(buffer);
    return buffer;
}

} // namespace Platform::Internal
