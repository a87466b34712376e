// SPDX-License-Identifier: GPL-3.0-or-later
// Decodes one audio stream of a reader into sample buffers: interleaved, in one contiguous
// block, converted once from the decoder's own layout (and rate or channel count where the
// output asked for others). Buffers come from a pool. Called under the reader's lock.
#pragma once

#include "platform/media/SampleBuffer.h"
#include "platform/media/internal/FfmpegPointers.h"
#include "platform/media/internal/SampleBufferPool.h"

#include <cstdint>
#include <memory>

namespace Platform::Internal {

class ReaderSource;

class AudioTrackDecoder
{
public:
    struct Target
    {
        SampleBuffer::SampleFormat format = SampleBuffer::SampleFormat::float32;
        // 0 keeps the source's.
        int sampleRate = 0;
        int channelCount = 0;
    };

    // Frames per buffer unless one decoded frame alone is longer.
    static constexpr int framesPerBuffer = 8192;

    // Opens the decoder of `streamIndex`. Throws MediaError (decoderNotFound, …).
    AudioTrackDecoder(ReaderSource& source, int streamIndex, Target target);
    ~AudioTrackDecoder();
    AudioTrackDecoder(const AudioTrackDecoder&) = delete;
    AudioTrackDecoder& operator=(const AudioTrackDecoder&) = delete;

    // The next buffer, an invalid one for a packet the decoder refused, or null at the end.
    // Throws MediaError when the file cannot be read on.
    std::shared_ptr<SampleBuffer> next();

private:
    void configureResampler(const AVFrame& frame);
    bool matchesResamplerInput(const AVFrame& frame) const;
    int convertPendingFrame(SampleBuffer& buffer, int filled);
    std::shared_ptr<SampleBuffer> finish(std::shared_ptr<SampleBuffer> buffer, int filled);
    std::shared_ptr<SampleBuffer> invalidBuffer();

    ReaderSource& m_source;
    int m_streamIndex;
    Target m_target;
    int m_outputRate = 0;
    AVChannelLayout m_outputLayout = {};
    AVSampleFormat m_outputFormat = AV_SAMPLE_FMT_FLT;

    CodecContextPtr m_decoder;
    ResamplerPtr m_resampler;
    int m_resamplerRate = 0;
    AVSampleFormat m_resamplerFormat = AV_SAMPLE_FMT_NONE;
    AVChannelLayout m_resamplerLayout = {};
    FramePtr m_frame;
    bool m_framePending = false;
    bool m_invalidPending = false;
    bool m_decoderDrained = false;
    bool m_ended = false;
    bool m_timeKnown = false;
    std::int64_t m_nextSample = 0;
    // Where the track ends by its container, in seconds; 0 when not stated exactly.
    double m_endTime = 0.0;
    SampleBufferPool m_pool;
};

} // namespace Platform::Internal
