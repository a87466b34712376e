// SPDX-License-Identifier: GPL-3.0-or-later
// A block of decoded audio (interleaved samples in one contiguous block, with the time of its
// first frame) or one decoded video frame (an image buffer with its presentation time and
// duration). Passed around as std::shared_ptr (the pointer is its identity). One thread at a
// time may use a buffer; handing it to another thread through a queue is fine.
#pragma once

#include "platform/media/MediaTime.h"
#include "platform/media/MediaType.h"
#include "platform/media/PixelBuffer.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace Platform {

class SampleBuffer
{
public:
    // The form of one sample in the data block, always in this machine's (little-endian) order.
    enum class SampleFormat
    {
        float32,
        int16,
    };

    // Room for `capacityFrames` frames of `channelCount` channels, all samples zero, no frames yet.
    SampleBuffer(SampleFormat format, int sampleRate, int channelCount, int capacityFrames);
    SampleBuffer(const SampleBuffer&) = delete;
    SampleBuffer& operator=(const SampleBuffer&) = delete;

    // A float32 buffer of `frameCount` silent frames.
    static std::shared_ptr<SampleBuffer> make(MediaTime presentationTime, int sampleRate,
                                              int channelCount, int frameCount);
    // A float32 buffer holding a copy of `interleaved` (its size must divide by the channel count).
    static std::shared_ptr<SampleBuffer> fromSamples(MediaTime presentationTime, int sampleRate,
                                                     int channelCount,
                                                     std::span<const float> interleaved);

    // A video sample: `imageBuffer` shown from `presentationTime` for `duration` (invalid
    // when unknown). No audio data block.
    static std::shared_ptr<SampleBuffer> makeVideo(MediaTime presentationTime, MediaTime duration,
                                                   std::shared_ptr<PixelBuffer> imageBuffer);

    MediaType mediaType() const { return m_imageBuffer ? MediaType::video : MediaType::audio; }
    // The picture of a video sample; null for audio.
    const std::shared_ptr<PixelBuffer>& imageBuffer() const { return m_imageBuffer; }

    MediaTime presentationTime() const { return m_presentationTime; }
    void setPresentationTime(MediaTime time) { m_presentationTime = time; }
    // Audio: frameCount / sampleRate, in the sample rate's timescale. Video: the frame's own.
    MediaTime duration() const;

    SampleFormat sampleFormat() const { return m_format; }
    int sampleRate() const { return m_sampleRate; }
    int channelCount() const { return m_channelCount; }
    int frameCount() const { return m_frameCount; }
    int capacityFrames() const { return m_capacityFrames; }
    // Sets how many frames of the block are in use; clamped to [0, capacityFrames()].
    void setFrameCount(int frameCount);
    int bytesPerSample() const { return m_format == SampleFormat::float32 ? 4 : 2; }
    int bytesPerFrame() const { return bytesPerSample() * m_channelCount; }

    // A buffer the reader could not make sense of stays in the stream but is marked invalid.
    bool isValid() const { return m_valid; }
    void setValid(bool valid) { m_valid = valid; }

    // The data block: frameCount() × channelCount() interleaved samples, byteSize() bytes.
    // data() is for float32 buffers, int16Data() for int16 ones; both point at the same bytes.
    float* data() { return static_cast<float*>(static_cast<void*>(m_storage.get())); }
    const float* data() const
    {
        return static_cast<const float*>(static_cast<void*>(m_storage.get()));
    }
    std::int16_t* int16Data()
    {
        return static_cast<std::int16_t*>(static_cast<void*>(m_storage.get()));
    }
    const std::int16_t* int16Data() const
    {
        return static_cast<const std::int16_t*>(static_cast<void*>(m_storage.get()));
    }
    std::byte* bytes() { return m_storage.get(); }
    const std::byte* bytes() const { return m_storage.get(); }
    std::size_t byteSize() const;
    // frameCount() × channelCount() as float32 samples; empty for an int16 buffer.
    std::span<float> samples();
    std::span<const float> samples() const;

private:
    SampleFormat m_format;
    int m_sampleRate;
    int m_channelCount;
    int m_capacityFrames;
    int m_frameCount = 0;
    bool m_valid = true;
    MediaTime m_presentationTime = MediaTime::zero();
    MediaTime m_videoDuration = MediaTime::invalid();
    std::shared_ptr<PixelBuffer> m_imageBuffer;
    std::unique_ptr<std::byte[]> m_storage;
};

} // namespace Platform
