// SPDX-License-Identifier: GPL-3.0-or-later
// Encodes sample buffers for one audio writer input: converts each buffer once, straight into
// the encoder's frame (rate changes through the soxr resampler), and hands every packet to the
// muxer at once. Frames are reused. Called under the writer's lock.
#pragma once

#include "platform/media/FileType.h"
#include "platform/media/MediaTime.h"
#include "platform/media/SampleBuffer.h"
#include "platform/media/internal/EncoderChoice.h"
#include "platform/media/internal/FfmpegPointers.h"
#include "platform/media/internal/InputEncoder.h"

#include <cstdint>
#include <vector>

namespace Platform::Internal {

class AudioEncoder : public InputEncoder
{
public:
    // Frames per encoded frame for codecs that take any length (PCM).
    static constexpr int pcmFrameSize = 4096;

    // `sourceBitDepth` (0 when unknown) chooses ALAC's depth where the settings do not.
    AudioEncoder(const AudioEncoding& encoding, FileType fileType, int sourceBitDepth);
    ~AudioEncoder() override;

    void open(AVFormatContext* muxer) override;
    // Encodes `buffer`, whose first frame belongs at `sessionOffset` after the session start
    // (used for the first buffer only: later ones follow on without gaps). Throws MediaError.
    void encode(const SampleBuffer& buffer, MediaTime sessionOffset, PacketWriter& writer);
    void finish(PacketWriter& writer) override;

    // The codec FFmpeg will be asked for.
    AVCodecID codecId() const { return m_codecId; }

private:
    void configureResampler(const SampleBuffer& buffer);
    void prepareFrame();
    std::uint8_t** framePlanesAt(int frameOffset);
    void completeFrameIfFull(PacketWriter& writer);
    void convertAtOneRate(const std::uint8_t* input, int inputFrames, PacketWriter& writer);
    // Null input drains the resampler at the end. Returns the frames it made.
    int resample(const std::uint8_t* input, int inputFrames, PacketWriter& writer);
    void ensureStaging(int frames);
    void releaseStaging();
    void sendFrame(AVFrame* frame, PacketWriter& writer);
    void receivePackets(PacketWriter& writer);

    AudioEncoding m_encoding;
    AVCodecID m_codecId = AV_CODEC_ID_NONE;
    AVSampleFormat m_sampleFormat = AV_SAMPLE_FMT_NONE;
    const char* m_encoderName = nullptr;
    CodecContextPtr m_context;
    AVStream* m_stream = nullptr;
    ResamplerPtr m_resampler;
    SampleBuffer::SampleFormat m_inputFormat = SampleBuffer::SampleFormat::float32;
    int m_inputRate = 0;
    int m_inputChannels = 0;
    FramePtr m_frame;
    PacketPtr m_packet;
    std::vector<std::uint8_t*> m_planes;
    // Resampled samples on their way into encoder frames; grows to the largest buffer seen.
    std::uint8_t** m_staging = nullptr;
    int m_stagingFrames = 0;
    int m_frameSize = 0;
    int m_filled = 0;
    bool m_started = false;
    bool m_finished = false;
    std::int64_t m_nextPts = 0;
};

} // namespace Platform::Internal
