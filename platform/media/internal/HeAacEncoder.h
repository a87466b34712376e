// SPDX-License-Identifier: GPL-3.0-or-later
// Encodes sample buffers for an HE-AAC or HE-AAC v2 writer input: the built-in AAC encoder
// codes the half-rate core (one downmixed channel for v2), our high-band encoder adds its side
// information to every core frame in a fill element, and the stream is described with the
// high-efficiency decoder configuration. Called under the writer's lock.
#pragma once

#include "platform/media/MediaTime.h"
#include "platform/media/SampleBuffer.h"
#include "platform/media/internal/EncoderChoice.h"
#include "platform/media/internal/FfmpegPointers.h"
#include "platform/media/internal/InputEncoder.h"
#include "platform/media/sbr/EncoderPlan.h"
#include "platform/media/sbr/SbrEncoder.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace Platform::Internal {

class HeAacEncoder : public InputEncoder
{
public:
    // Output samples between an input sample and its decoded copy: the core's frame of
    // look-ahead, the half-rate filter and a decoder's filter banks.
    static constexpr int primingSamples = 3074;

    explicit HeAacEncoder(const AudioEncoding& encoding);
    ~HeAacEncoder() override;

    // How the encoding's bits are shared; nullopt when its rate or channels cannot be coded.
    static std::optional<Sbr::EncoderPlan> planFor(const AudioEncoding& encoding);

    void open(AVFormatContext* muxer) override;
    // Encodes `buffer`, whose first frame belongs at `sessionOffset` after the session start
    // (used for the first buffer only). Throws MediaError.
    void encode(const SampleBuffer& buffer, MediaTime sessionOffset, PacketWriter& writer);
    void finish(PacketWriter& writer) override;

private:
    void openCore();
    void configureResampler(const SampleBuffer& buffer);
    void convert(const std::uint8_t* input, int inputFrames, PacketWriter& writer);
    void feedCore(PacketWriter& writer);
    void sendCoreFrame(AVFrame* frame, PacketWriter& writer);
    void receiveCorePackets(PacketWriter& writer);
    void writeBlock(const AVPacket& corePacket, PacketWriter& writer);

    AudioEncoding m_encoding;
    bool m_parametricStereo = false;
    Sbr::EncoderPlan m_plan;
    std::unique_ptr<Sbr::SbrEncoder> m_sbr;
    CodecContextPtr m_core;
    AVStream* m_stream = nullptr;
    ResamplerPtr m_resampler;
    SampleBuffer::SampleFormat m_inputFormat = SampleBuffer::SampleFormat::float32;
    int m_inputRate = 0;
    int m_inputChannels = 0;
    std::vector<std::vector<float>> m_converted;
    FramePtr m_frame;
    PacketPtr m_corePacket;
    PacketPtr m_packet;
    bool m_started = false;
    bool m_finished = false;
    std::int64_t m_startPts = 0;
    // Full-rate input samples taken, and core packets written so far.
    std::int64_t m_inputFrames = 0;
    std::int64_t m_blocks = 0;
    std::int64_t m_coreFramesSent = 0;
};

} // namespace Platform::Internal
