// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/HeAacEncoder.h"

#include "platform/media/MediaError.h"
#include "platform/media/internal/FfmpegError.h"
#include "platform/media/sbr/AudioSpecificConfig.h"
#include "platform/media/sbr/RawDataBlock.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

#include <algorithm>
#include <cstring>

namespace Platform::Internal {

namespace {

constexpr int coreFrameLength = 1024;

MediaError outOfMemory()
{
    return MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));
}

} // namespace

HeAacEncoder::HeAacEncoder(const AudioEncoding& encoding)
    : m_encoding(encoding)
    , m_parametricStereo(encoding.codec == EncodedCodec::heAacV2)
{}

HeAacEncoder::~HeAacEncoder() = default;

std::optional<Sbr::EncoderPlan> HeAacEncoder::planFor(const AudioEncoding& encoding)
{
    return Sbr::EncoderPlan::make(encoding.sampleRate, encoding.channelCount,
                                  encoding.codec == EncodedCodec::heAacV2, encoding.bitRate);
}

void HeAacEncoder::open(AVFormatContext* muxer)
{
    const std::optional<Sbr::EncoderPlan> plan = planFor(m_encoding);
    if (!plan)
        throw MediaError::media(MediaError::encoderNotFound,
                                QStringLiteral("No HE-AAC encoding for these settings"));
    m_plan = *plan;
    openCore();
    m_sbr = std::make_unique<Sbr::SbrEncoder>(m_encoding.sampleRate, m_encoding.channelCount,
                                              m_parametricStereo, m_plan.bands);
    m_converted.assign(static_cast<std::size_t>(m_encoding.channelCount), {});
    m_packet.reset(av_packet_alloc());
    m_corePacket.reset(av_packet_alloc());
    if (!m_packet || !m_corePacket)
        throw outOfMemory();

    const std::vector<std::uint8_t> config = Sbr::AudioSpecificConfig::make(
        m_plan.coreRate, m_encoding.sampleRate, m_plan.coreChannels, m_parametricStereo);
    m_stream = avformat_new_stream(muxer, nullptr);
    if (!m_stream || config.empty())
        throw outOfMemory();
    AVCodecParameters& parameters = *m_stream->codecpar;
    parameters.codec_type = AVMEDIA_TYPE_AUDIO;
    parameters.codec_id = AV_CODEC_ID_AAC;
    // The track counts time at the core's rate, a core frame per block: the decoder
    // configuration gives the output rate, and the priming then reads as the same time both
    // for players that count it in core samples and for those that take it as time.
    parameters.sample_rate = m_plan.coreRate;
    av_channel_layout_default(&parameters.ch_layout, m_encoding.channelCount);
    parameters.profile = m_parametricStereo ? FF_PROFILE_AAC_HE_V2 : FF_PROFILE_AAC_HE;
    parameters.frame_size = coreFrameLength;
    parameters.bit_rate = m_plan.totalBitRate;
    parameters.extradata =
        static_cast<std::uint8_t*>(av_mallocz(config.size() + AV_INPUT_BUFFER_PADDING_SIZE));
    if (!parameters.extradata)
        throw outOfMemory();
    std::memcpy(parameters.extradata, config.data(), config.size());
    parameters.extradata_size = static_cast<int>(config.size());
    m_stream->time_base = AVRational{1, m_plan.coreRate};
}

void HeAacEncoder::openCore()
{
    const AVCodec* codec = avcodec_find_encoder_by_name("aac");
    if (!codec)
        throw MediaError::media(MediaError::encoderNotFound,
                                QStringLiteral("No encoder for AAC in this build"));
    m_core.reset(avcodec_alloc_context3(codec));
    m_frame.reset(av_frame_alloc());
    if (!m_core || !m_frame)
        throw outOfMemory();
    AVCodecContext& context = *m_core;
    context.sample_fmt = AV_SAMPLE_FMT_FLTP;
    context.sample_rate = m_plan.coreRate;
    av_channel_layout_default(&context.ch_layout, m_plan.coreChannels);
    context.time_base = AVRational{1, m_plan.coreRate};
    context.bit_rate = m_plan.coreBitRate;
    // The core codes up to where the replicated band takes over.
    context.cutoff = m_plan.crossoverHertz;
    context.flags |= AV_CODEC_FLAG_BITEXACT;
    const int result = avcodec_open2(&context, codec, nullptr);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot open the aac encoder"));
    if (context.frame_size != coreFrameLength)
        throw MediaError::media(MediaError::unknown,
                                QStringLiteral("The AAC encoder takes frames of another length"));
    m_frame->format = context.sample_fmt;
    m_frame->sample_rate = context.sample_rate;
    m_frame->nb_samples = coreFrameLength;
    av_channel_layout_copy(&m_frame->ch_layout, &context.ch_layout);
    if (av_frame_get_buffer(m_frame.get(), 0) < 0)
        throw outOfMemory();
}

void HeAacEncoder::configureResampler(const SampleBuffer& buffer)
{
    m_inputFormat = buffer.sampleFormat();
    m_inputRate = buffer.sampleRate();
    m_inputChannels = buffer.channelCount();
    AVChannelLayout inputLayout = {};
    AVChannelLayout outputLayout = {};
    av_channel_layout_default(&inputLayout, m_inputChannels);
    av_channel_layout_default(&outputLayout, m_encoding.channelCount);
    SwrContext* context = nullptr;
    const AVSampleFormat inputFormat = m_inputFormat == SampleBuffer::SampleFormat::float32
                                           ? AV_SAMPLE_FMT_FLT
                                           : AV_SAMPLE_FMT_S16;
    int result =
        swr_alloc_set_opts2(&context, &outputLayout, AV_SAMPLE_FMT_FLTP, m_encoding.sampleRate,
                            &inputLayout, inputFormat, m_inputRate, 0, nullptr);
    av_channel_layout_uninit(&inputLayout);
    av_channel_layout_uninit(&outputLayout);
    m_resampler.reset(context);
    if (result < 0 || !context)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot convert audio for the encoder"));
    if (m_inputRate != m_encoding.sampleRate)
        av_opt_set_int(context, "resampler", SWR_ENGINE_SOXR, 0);
    result = swr_init(context);
    if (result < 0 && m_inputRate != m_encoding.sampleRate) {
        av_opt_set_int(context, "resampler", SWR_ENGINE_SWR, 0);
        result = swr_init(context);
    }
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot convert audio for the encoder"));
}

void HeAacEncoder::encode(const SampleBuffer& buffer, MediaTime sessionOffset, PacketWriter& writer)
{
    if (m_finished || buffer.frameCount() == 0)
        return;
    if (!m_started) {
        m_started = true;
        if (sessionOffset.isValid && sessionOffset.value > 0)
            m_startPts =
                av_rescale(sessionOffset.value, m_encoding.sampleRate, sessionOffset.timescale);
    }
    if (!m_resampler || buffer.sampleFormat() != m_inputFormat ||
        buffer.sampleRate() != m_inputRate || buffer.channelCount() != m_inputChannels)
        configureResampler(buffer);
    convert(reinterpret_cast<const std::uint8_t*>(buffer.bytes()), buffer.frameCount(), writer);
}

void HeAacEncoder::convert(const std::uint8_t* input, int inputFrames, PacketWriter& writer)
{
    // Room for all the converter can give, so that it never holds output back.
    const int room = swr_get_out_samples(m_resampler.get(), inputFrames);
    if (room < 0)
        throw mediaErrorFromFfmpeg(room, QStringLiteral("Cannot convert audio"));
    if (room == 0)
        return;
    std::vector<std::uint8_t*> planes;
    for (std::vector<float>& plane : m_converted) {
        plane.resize(static_cast<std::size_t>(room));
        planes.push_back(reinterpret_cast<std::uint8_t*>(plane.data()));
    }
    const int converted =
        swr_convert(m_resampler.get(), planes.data(), room, input ? &input : nullptr, inputFrames);
    if (converted < 0)
        throw mediaErrorFromFfmpeg(converted, QStringLiteral("Cannot convert audio"));
    if (converted == 0)
        return;
    std::vector<const float*> samples;
    for (const std::vector<float>& plane : m_converted)
        samples.push_back(plane.data());
    m_sbr->push(samples.data(), converted);
    m_inputFrames += converted;
    feedCore(writer);
}

void HeAacEncoder::feedCore(PacketWriter& writer)
{
    std::vector<std::vector<float>>& core = m_sbr->core();
    while (core[0].size() >= coreFrameLength) {
        const int result = av_frame_make_writable(m_frame.get());
        if (result < 0)
            throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot make an audio frame"));
        for (std::size_t ch = 0; ch < core.size(); ++ch) {
            std::memcpy(m_frame->extended_data[ch], core[ch].data(),
                        coreFrameLength * sizeof(float));
            core[ch].erase(core[ch].begin(), core[ch].begin() + coreFrameLength);
        }
        m_frame->nb_samples = coreFrameLength;
        m_frame->pts = m_coreFramesSent * coreFrameLength;
        ++m_coreFramesSent;
        sendCoreFrame(m_frame.get(), writer);
    }
}

void HeAacEncoder::finish(PacketWriter& writer)
{
    if (m_finished || !m_core)
        return;
    m_finished = true;
    if (m_resampler) {
        for (;;) {
            const std::int64_t before = m_inputFrames;
            convert(nullptr, 0, writer);
            if (m_inputFrames == before)
                break;
        }
    }
    // Silence after the end carries the last input through every delay.
    const int tail = primingSamples + 2 * Sbr::SbrEncoder::frameLength;
    const std::vector<float> silence(static_cast<std::size_t>(tail), 0.0f);
    const std::vector<const float*> planes(static_cast<std::size_t>(m_encoding.channelCount),
                                           silence.data());
    m_sbr->push(planes.data(), tail);
    feedCore(writer);
    sendCoreFrame(nullptr, writer);
}

void HeAacEncoder::sendCoreFrame(AVFrame* frame, PacketWriter& writer)
{
    const int result = avcodec_send_frame(m_core.get(), frame);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot encode audio"));
    receiveCorePackets(writer);
}

void HeAacEncoder::receiveCorePackets(PacketWriter& writer)
{
    for (;;) {
        const int result = avcodec_receive_packet(m_core.get(), m_corePacket.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return;
        if (result < 0)
            throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot encode audio"));
        writeBlock(*m_corePacket, writer);
        av_packet_unref(m_corePacket.get());
    }
}

void HeAacEncoder::writeBlock(const AVPacket& corePacket, PacketWriter& writer)
{
    constexpr std::int64_t length = Sbr::SbrEncoder::frameLength;
    std::optional<Sbr::BitWriter> side = m_sbr->nextFrame();
    while (!side) {
        // Only at the very end can the core run ahead of the filter bank.
        const std::vector<float> silence(length, 0.0f);
        const std::vector<const float*> planes(static_cast<std::size_t>(m_encoding.channelCount),
                                               silence.data());
        m_sbr->push(planes.data(), static_cast<int>(length));
        side = m_sbr->nextFrame();
    }
    const std::int64_t pts = m_startPts + m_blocks * length - primingSamples;
    ++m_blocks;
    const std::int64_t end = m_startPts + m_inputFrames;
    if (m_finished && pts >= end)
        return;
    const std::optional<std::vector<std::uint8_t>> block = Sbr::RawDataBlock::withFill(
        std::span<const std::uint8_t>(corePacket.data, static_cast<std::size_t>(corePacket.size)),
        Sbr::RawDataBlock::highBandData, *side);
    if (!block)
        throw MediaError::media(MediaError::unknown,
                                QStringLiteral("The AAC encoder gave a frame without its end"));
    av_packet_unref(m_packet.get());
    if (av_new_packet(m_packet.get(), static_cast<int>(block->size())) < 0)
        throw outOfMemory();
    std::memcpy(m_packet->data, block->data(), block->size());
    // Output samples to core samples.
    m_packet->pts = pts / 2;
    m_packet->dts = pts / 2;
    m_packet->duration = (m_finished ? std::min(length, end - pts) : length) / 2;
    m_packet->flags |= AV_PKT_FLAG_KEY;
    writer.writePacket(m_packet.get(), m_stream, AVRational{1, m_plan.coreRate});
}

} // namespace Platform::Internal
