// SPDX-License-Identifier: GPL-3.0-or-later
// Encodes sample buffers for one audio writer input: converts each buffer once, straight into
// the encoder's frame (rate changes through the soxr resampler), or for PCM straight into the
// stream's bytes, and hands the packets to the muxer. Frames are reused. AAC and ALAC alone in
// their file are encoded on every core (ChunkEncoderPool) and muxed in order. Called under the
// writer's lock.
#pragma once

#include "platform/media/FileType.h"
#include "platform/media/MediaTime.h"
#include "platform/media/SampleBuffer.h"
#include "platform/media/internal/EncoderChoice.h"
#include "platform/media/internal/FfmpegPointers.h"
#include "platform/media/internal/InputEncoder.h"
#include "platform/media/internal/PcmPacker.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace Platform::Internal {

class ChunkEncoderPool;
class PcmConversionThread;
struct EncodeChunk;

class AudioEncoder : public InputEncoder
{
public:
    // Frames per encoded frame for codecs that take any length (PCM).
    static constexpr int pcmFrameSize = 4096;

    // `sourceBitDepth` (0 when unknown) chooses ALAC's depth where the settings do not.
    AudioEncoder(const AudioEncoding& encoding, FileType fileType, int sourceBitDepth);
    ~AudioEncoder() override;

    // Whether the stream may be encoded on several cores: only when it is the file's one
    // stream (beside a video encoder the cores are taken). Before open.
    void setParallelAllowed(bool allowed) { m_parallelAllowed = allowed; }

    void open(AVFormatContext* muxer) override;
    // Encodes `buffer`, whose first frame belongs at `sessionOffset` after the session start
    // (used for the first buffer only: later ones follow on without gaps). Throws MediaError.
    // PCM with a rate change may hold on to the buffer until a thread of its own converted it.
    void encode(const std::shared_ptr<const SampleBuffer>& buffer, MediaTime sessionOffset,
                PacketWriter& writer);
    void finish(PacketWriter& writer) override;

    // The codec FFmpeg will be asked for.
    AVCodecID codecId() const { return m_codecId; }

private:
    void setUpParallel();
    // A second encoder set up as the first one (for a worker of the pool).
    CodecContextPtr cloneContext() const;
    void writeToFile(AVPacket* packet, PacketWriter& writer);
    // The frames chunk `sequence` holds, and where its first one lies in the stream.
    int chunkCapacity(std::int64_t sequence) const;
    std::int64_t chunkFirstFrame(std::int64_t sequence) const;
    void describeChunk(EncodeChunk& chunk, std::int64_t sequence, bool last) const;
    // The frame being filled is full: moves on, handing a full chunk to the pool.
    void advanceChunk(PacketWriter& writer);
    void finishParallel(PacketWriter& writer);
    // The first chunk is encoded here as it fills, by the first encoder, so that a short stream
    // is written (and a failed write met) exactly as in a serial encode. Null drains.
    void encodeFirstChunkFrame(AVFrame* frame, int samples, PacketWriter& writer);
    void packPcm(const float* input, int frames, PacketWriter& writer);
    void writePcmPacket(int frames, PacketWriter& writer);
    void writePcmBytes(const std::uint8_t* bytes, int frames, PacketWriter& writer);
    // Packed blocks from the conversion thread go out in packets of m_frameSize frames, as the
    // packing here makes them (the file sees the same writes either way).
    void collectPcm(const std::uint8_t* bytes, int frames, PacketWriter& writer);
    // Resamples where needed and packs on the conversion thread; false where it is not used.
    void noteInput(const SampleBuffer& buffer);
    // True when `buffer` differs from the output in its rate alone (float, same channels in the
    // plain order): its channels can then be resampled apart.
    bool onlyRateChanges(const SampleBuffer& buffer) const;
    bool convertPcmOnThread(const std::shared_ptr<const SampleBuffer>& buffer,
                            PacketWriter& writer);
    void finishPcmThread(PacketWriter& writer);
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
    // The frame being filled: m_frame, or a frame of the chunk in hand.
    AVFrame* m_fill = nullptr;

    // PCM: bytes of the packet being filled, written without an encoder.
    PcmPacker m_packer;
    std::vector<std::uint8_t> m_pcmBytes;
    // The format the converter delivers: the encoder's, or interleaved float for PCM.
    AVSampleFormat m_convertFormat = AV_SAMPLE_FMT_NONE;

    // Parallel encoding: segments of m_segmentFrames frames; AAC adds m_prerollFrames before
    // and m_postrollFrames after each, whose packets are dropped.
    bool m_parallelAllowed = false;
    bool m_pcmThreadAllowed = false;
    std::unique_ptr<PcmConversionThread> m_pcmThread;
    // The thread only packs: the buffers come at the output's rate and channel count.
    bool m_pcmThreadPacksOnly = false;
    std::unique_ptr<ChunkEncoderPool> m_pool;
    EncodeChunk* m_chunk = nullptr;
    std::int64_t m_chunkSequence = 0;
    int m_chunkFrame = 0;
    int m_segmentFrames = 0;
    int m_prerollFrames = 0;
    int m_postrollFrames = 0;
    std::int64_t m_ptsBase = 0;
};

} // namespace Platform::Internal
