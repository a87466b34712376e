// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/AudioEncoder.h"

#include "platform/media/MediaError.h"
#include "platform/media/internal/FfmpegError.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

#include <algorithm>

namespace Platform::Internal {

namespace {

// Default bit rate of AAC without a bit rate setting.
constexpr int aacBitsPerSecondPerChannel = 64000;

const char* pcmEncoderName(int bits, bool isFloat, bool bigEndian)
{
    if (isFloat)
        return bits == 64 ? (bigEndian ? "pcm_f64be" : "pcm_f64le")
                          : (bigEndian ? "pcm_f32be" : "pcm_f32le");
    switch (bits) {
    case 24:
        return bigEndian ? "pcm_s24be" : "pcm_s24le";
    case 32:
        return bigEndian ? "pcm_s32be" : "pcm_s32le";
    default:
        return bigEndian ? "pcm_s16be" : "pcm_s16le";
    }
}

AVSampleFormat pcmSampleFormat(int bits, bool isFloat)
{
    if (isFloat)
        return bits == 64 ? AV_SAMPLE_FMT_DBL : AV_SAMPLE_FMT_FLT;
    return bits == 16 ? AV_SAMPLE_FMT_S16 : AV_SAMPLE_FMT_S32;
}

MediaError noEncoder(const QString& what)
{
    return MediaError::media(MediaError::encoderNotFound,
                             QStringLiteral("No encoder for %1 in this build").arg(what));
}

} // namespace

AudioEncoder::AudioEncoder(const AudioEncoding& encoding, FileType fileType, int sourceBitDepth)
    : m_encoding(encoding)
{
    switch (encoding.codec) {
    case EncodedCodec::pcm: {
        const bool bigEndian = encoding.bigEndian.value_or(containerIsBigEndian(fileType));
        m_encoderName = pcmEncoderName(encoding.bitDepth, encoding.isFloat, bigEndian);
        m_sampleFormat = pcmSampleFormat(encoding.bitDepth, encoding.isFloat);
        break;
    }
    case EncodedCodec::aac:
        m_encoderName = "aac";
        m_sampleFormat = AV_SAMPLE_FMT_FLTP;
        break;
    case EncodedCodec::heAac:
    case EncodedCodec::heAacV2:
        // Only an encoder that knows the high-efficiency profiles will do; the built-in AAC
        // encoder does not.
        m_encoderName = "libfdk_aac";
        m_sampleFormat = AV_SAMPLE_FMT_S16;
        break;
    case EncodedCodec::alac: {
        int bits = encoding.bitDepth;
        if (bits == 0)
            bits = sourceBitDepth > 16 ? 24 : 16;
        m_encoding.bitDepth = bits;
        m_encoderName = "alac";
        m_sampleFormat = bits == 24 ? AV_SAMPLE_FMT_S32P : AV_SAMPLE_FMT_S16P;
        break;
    }
    default:
        break;
    }
    if (const AVCodec* codec =
            m_encoderName ? avcodec_find_encoder_by_name(m_encoderName) : nullptr)
        m_codecId = codec->id;
}

AudioEncoder::~AudioEncoder()
{
    releaseStaging();
}

void AudioEncoder::open(AVFormatContext* muxer)
{
    const AVCodec* codec = m_encoderName ? avcodec_find_encoder_by_name(m_encoderName) : nullptr;
    if (!codec) {
        switch (m_encoding.codec) {
        case EncodedCodec::heAac:
            throw noEncoder(QStringLiteral("HE-AAC"));
        case EncodedCodec::heAacV2:
            throw noEncoder(QStringLiteral("HE-AAC v2"));
        default:
            throw noEncoder(QString::fromUtf8(m_encoderName ? m_encoderName : "this codec"));
        }
    }
    m_context.reset(avcodec_alloc_context3(codec));
    m_frame.reset(av_frame_alloc());
    m_packet.reset(av_packet_alloc());
    if (!m_context || !m_frame || !m_packet)
        throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));

    AVCodecContext& context = *m_context;
    context.sample_fmt = m_sampleFormat;
    context.sample_rate = m_encoding.sampleRate;
    av_channel_layout_default(&context.ch_layout, m_encoding.channelCount);
    context.time_base = AVRational{1, m_encoding.sampleRate};
    if (m_encoding.codec == EncodedCodec::aac)
        context.bit_rate =
            m_encoding.bitRate.value_or(aacBitsPerSecondPerChannel * m_encoding.channelCount);
    if (m_encoding.codec == EncodedCodec::heAac || m_encoding.codec == EncodedCodec::heAacV2) {
        context.profile =
            m_encoding.codec == EncodedCodec::heAac ? FF_PROFILE_AAC_HE : FF_PROFILE_AAC_HE_V2;
        if (m_encoding.bitRate)
            context.bit_rate = *m_encoding.bitRate;
    }
    if (m_encoding.codec == EncodedCodec::alac)
        context.bits_per_raw_sample = m_encoding.bitDepth;
    if (muxer->oformat->flags & AVFMT_GLOBALHEADER)
        context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;

    int result = avcodec_open2(&context, codec, nullptr);
    if (result < 0)
        throw mediaErrorFromFfmpeg(
            result,
            QStringLiteral("Cannot open the %1 encoder").arg(QString::fromUtf8(codec->name)));
    m_stream = avformat_new_stream(muxer, nullptr);
    if (!m_stream)
        throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));
    result = avcodec_parameters_from_context(m_stream->codecpar, &context);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot describe the audio stream"));
    m_stream->time_base = context.time_base;

    const bool anyLength =
        context.frame_size <= 0 || (codec->capabilities & AV_CODEC_CAP_VARIABLE_FRAME_SIZE);
    m_frameSize = anyLength ? pcmFrameSize : context.frame_size;
    m_frame->format = context.sample_fmt;
    m_frame->sample_rate = context.sample_rate;
    m_frame->nb_samples = m_frameSize;
    av_channel_layout_copy(&m_frame->ch_layout, &context.ch_layout);
    result = av_frame_get_buffer(m_frame.get(), 0);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot make an audio frame"));
}

void AudioEncoder::configureResampler(const SampleBuffer& buffer)
{
    m_inputFormat = buffer.sampleFormat();
    m_inputRate = buffer.sampleRate();
    m_inputChannels = buffer.channelCount();
    AVChannelLayout inputLayout = {};
    av_channel_layout_default(&inputLayout, m_inputChannels);
    SwrContext* context = nullptr;
    const AVSampleFormat inputFormat = m_inputFormat == SampleBuffer::SampleFormat::float32
                                           ? AV_SAMPLE_FMT_FLT
                                           : AV_SAMPLE_FMT_S16;
    int result = swr_alloc_set_opts2(&context, &m_context->ch_layout, m_context->sample_fmt,
                                     m_context->sample_rate, &inputLayout, inputFormat, m_inputRate,
                                     0, nullptr);
    av_channel_layout_uninit(&inputLayout);
    m_resampler.reset(context);
    if (result < 0 || !context)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot convert audio for the encoder"));
    if (m_inputRate != m_context->sample_rate)
        av_opt_set_int(context, "resampler", SWR_ENGINE_SOXR, 0);
    result = swr_init(context);
    if (result < 0 && m_inputRate != m_context->sample_rate) {
        av_opt_set_int(context, "resampler", SWR_ENGINE_SWR, 0);
        result = swr_init(context);
    }
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot convert audio for the encoder"));
}

void AudioEncoder::prepareFrame()
{
    // The encoder may still hold the frame's previous block; then it gets a fresh one.
    const int result = av_frame_make_writable(m_frame.get());
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot make an audio frame"));
}

std::uint8_t** AudioEncoder::framePlanesAt(int frameOffset)
{
    const bool planar = av_sample_fmt_is_planar(m_context->sample_fmt);
    const int sampleBytes = av_get_bytes_per_sample(m_context->sample_fmt);
    const int channels = m_context->ch_layout.nb_channels;
    const int planes = planar ? channels : 1;
    m_planes.resize(static_cast<std::size_t>(planes));
    for (int plane = 0; plane < planes; ++plane)
        m_planes[static_cast<std::size_t>(plane)] =
            m_frame->extended_data[plane] +
            static_cast<std::ptrdiff_t>(frameOffset) * sampleBytes * (planar ? 1 : channels);
    return m_planes.data();
}

void AudioEncoder::completeFrameIfFull(PacketWriter& writer)
{
    if (m_filled < m_frameSize)
        return;
    m_frame->nb_samples = m_frameSize;
    sendFrame(m_frame.get(), writer);
    m_filled = 0;
}

void AudioEncoder::convertAtOneRate(const std::uint8_t* input, int inputFrames,
                                    PacketWriter& writer)
{
    const int inputFrameBytes =
        m_inputChannels * (m_inputFormat == SampleBuffer::SampleFormat::float32 ? 4 : 2);
    while (inputFrames > 0) {
        if (m_filled == 0)
            prepareFrame();
        // Never more than fits: the converter would keep (copy) the rest.
        const int taken = std::min(m_frameSize - m_filled, inputFrames);
        const int converted =
            swr_convert(m_resampler.get(), framePlanesAt(m_filled), taken, &input, taken);
        if (converted < 0)
            throw mediaErrorFromFfmpeg(converted, QStringLiteral("Cannot convert audio"));
        input += static_cast<std::ptrdiff_t>(taken) * inputFrameBytes;
        inputFrames -= taken;
        m_filled += converted;
        completeFrameIfFull(writer);
    }
}

int AudioEncoder::resample(const std::uint8_t* input, int inputFrames, PacketWriter& writer)
{
    // The resampler always gets room for all it can give: the soxr engine must never be
    // left holding output.
    const int room = swr_get_out_samples(m_resampler.get(), inputFrames);
    if (room < 0)
        throw mediaErrorFromFfmpeg(room, QStringLiteral("Cannot resample audio"));
    if (room == 0)
        return 0;
    ensureStaging(room);
    const int converted =
        swr_convert(m_resampler.get(), m_staging, room, input ? &input : nullptr, inputFrames);
    if (converted < 0)
        throw mediaErrorFromFfmpeg(converted, QStringLiteral("Cannot resample audio"));
    const int channels = m_context->ch_layout.nb_channels;
    int offset = 0;
    while (offset < converted) {
        if (m_filled == 0)
            prepareFrame();
        const int count = std::min(m_frameSize - m_filled, converted - offset);
        av_samples_copy(m_frame->extended_data, m_staging, m_filled, offset, count, channels,
                        m_context->sample_fmt);
        m_filled += count;
        offset += count;
        completeFrameIfFull(writer);
    }
    return converted;
}

void AudioEncoder::ensureStaging(int frames)
{
    if (frames <= m_stagingFrames)
        return;
    releaseStaging();
    const int result = av_samples_alloc_array_and_samples(
        &m_staging, nullptr, m_context->ch_layout.nb_channels, frames, m_context->sample_fmt, 0);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot resample audio"));
    m_stagingFrames = frames;
}

void AudioEncoder::releaseStaging()
{
    if (m_staging) {
        av_freep(&m_staging[0]);
        av_freep(&m_staging);
    }
    m_stagingFrames = 0;
}

void AudioEncoder::encode(const SampleBuffer& buffer, MediaTime sessionOffset, PacketWriter& writer)
{
    if (m_finished || buffer.frameCount() == 0)
        return;
    if (!m_started) {
        m_started = true;
        if (sessionOffset.isValid && sessionOffset.value > 0)
            m_nextPts =
                av_rescale(sessionOffset.value, m_context->sample_rate, sessionOffset.timescale);
    }
    if (!m_resampler || buffer.sampleFormat() != m_inputFormat ||
        buffer.sampleRate() != m_inputRate || buffer.channelCount() != m_inputChannels)
        configureResampler(buffer);
    const auto* input = reinterpret_cast<const std::uint8_t*>(buffer.bytes());
    if (m_inputRate == m_context->sample_rate)
        convertAtOneRate(input, buffer.frameCount(), writer);
    else
        resample(input, buffer.frameCount(), writer);
}

void AudioEncoder::finish(PacketWriter& writer)
{
    if (m_finished || !m_context)
        return;
    m_finished = true;
    // What the resampler still holds at the very end.
    if (m_resampler && m_inputRate != m_context->sample_rate) {
        while (resample(nullptr, 0, writer) > 0) {
        }
    }
    if (m_filled > 0) {
        m_frame->nb_samples = m_filled;
        sendFrame(m_frame.get(), writer);
        m_filled = 0;
    }
    sendFrame(nullptr, writer);
}

void AudioEncoder::sendFrame(AVFrame* frame, PacketWriter& writer)
{
    if (frame) {
        frame->pts = m_nextPts;
        m_nextPts += frame->nb_samples;
    }
    const int result = avcodec_send_frame(m_context.get(), frame);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot encode audio"));
    receivePackets(writer);
}

void AudioEncoder::receivePackets(PacketWriter& writer)
{
    for (;;) {
        const int result = avcodec_receive_packet(m_context.get(), m_packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return;
        if (result < 0)
            throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot encode audio"));
        writer.writePacket(m_packet.get(), m_stream, m_context->time_base);
        av_packet_unref(m_packet.get());
    }
}

} // namespace Platform::Internal
