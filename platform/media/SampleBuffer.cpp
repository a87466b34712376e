// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/SampleBuffer.h"

#include <algorithm>
#include <cstring>

namespace Platform {

namespace {

std::size_t sampleBytes(SampleBuffer::SampleFormat format)
{
    return format == SampleBuffer::SampleFormat::float32 ? 4 : 2;
}

} // namespace

SampleBuffer::SampleBuffer(SampleFormat format, int sampleRate, int channelCount,
                           int capacityFrames)
    : m_format(format)
    , m_sampleRate(sampleRate)
    , m_channelCount(std::max(channelCount, 0))
    , m_capacityFrames(std::max(capacityFrames, 0))
    // Value-initialised: a new block reads as silence, never as leftover memory.
    , m_storage(new std::byte[std::max<std::size_t>(
          1, static_cast<std::size_t>(m_capacityFrames) * static_cast<std::size_t>(m_channelCount) *
                 sampleBytes(format))]())
{}

std::shared_ptr<SampleBuffer> SampleBuffer::make(MediaTime presentationTime, int sampleRate,
                                                 int channelCount, int frameCount)
{
    auto buffer =
        std::make_shared<SampleBuffer>(SampleFormat::float32, sampleRate, channelCount, frameCount);
    buffer->setFrameCount(frameCount);
    buffer->setPresentationTime(presentationTime);
    return buffer;
}

std::shared_ptr<SampleBuffer> SampleBuffer::fromSamples(MediaTime presentationTime, int sampleRate,
                                                        int channelCount,
                                                        std::span<const float> interleaved)
{
    const int frames = channelCount > 0 ? static_cast<int>(interleaved.size()) / channelCount : 0;
    auto buffer = make(presentationTime, sampleRate, channelCount, frames);
    std::memcpy(buffer->data(), interleaved.data(), buffer->byteSize());
    return buffer;
}

std::shared_ptr<SampleBuffer> SampleBuffer::makeVideo(MediaTime presentationTime,
                                                      MediaTime duration,
                                                      std::shared_ptr<PixelBuffer> imageBuffer)
{
    auto buffer = std::make_shared<SampleBuffer>(SampleFormat::float32, 0, 0, 0);
    buffer->m_presentationTime = presentationTime;
    buffer->m_videoDuration = duration;
    buffer->m_imageBuffer = std::move(imageBuffer);
    return buffer;
}

MediaTime SampleBuffer::duration() const
{
    if (m_imageBuffer)
        return m_videoDuration;
    if (m_sampleRate <= 0)
        return MediaTime::invalid();
    return MediaTime::make(m_frameCount, m_sampleRate);
}

void SampleBuffer::setFrameCount(int frameCount)
{
    m_frameCount = std::clamp(frameCount, 0, m_capacityFrames);
}

std::size_t SampleBuffer::byteSize() const
{
    return static_cast<std::size_t>(m_frameCount) * static_cast<std::size_t>(bytesPerFrame());
}

std::span<float> SampleBuffer::samples()
{
    if (m_format != SampleFormat::float32)
        return {};
    return {data(),
            static_cast<std::size_t>(m_frameCount) * static_cast<std::size_t>(m_channelCount)};
}

std::span<const float> SampleBuffer::samples() const
{
    if (m_format != SampleFormat::float32)
        return {};
    return {data(),
            static_cast<std::size_t>(m_frameCount) * static_cast<std::size_t>(m_channelCount)};
}

} // namespace Platform
