// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/VideoEncoder.h"

#include "platform/media/FormatDescription.h"
#include "platform/media/MediaError.h"
#include "platform/media/internal/FfmpegError.h"
#include "platform/media/internal/InputFile.h"
#include "platform/media/internal/PixelBufferState.h"

#include <QThread>

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
#include <libavutil/rational.h>
}

#include <algorithm>
#include <cmath>

namespace Platform::Internal {

namespace {

// The rate the bit-rate encoders budget for when the pictures' own rate is not known before
// the first one arrives; the timestamps themselves are exact.
constexpr int assumedFramesPerSecond = 30;

AVColorPrimaries primariesFromName(const QString& name)
{
    if (name == ColorPrimaries::itu709)
        return AVCOL_PRI_BT709;
    if (name == ColorPrimaries::ebu3213)
        return AVCOL_PRI_BT470BG;
    if (name == ColorPrimaries::smpteC)
        return AVCOL_PRI_SMPTE170M;
    if (name == ColorPrimaries::itu2020)
        return AVCOL_PRI_BT2020;
    if (name == ColorPrimaries::p3D65)
        return AVCOL_PRI_SMPTE432;
    if (name == ColorPrimaries::dciP3)
        return AVCOL_PRI_SMPTE431;
    const int value = av_color_primaries_from_name(name.toUtf8().constData());
    return value < 0 ? AVCOL_PRI_UNSPECIFIED : static_cast<AVColorPrimaries>(value);
}

AVColorTransferCharacteristic transferFromName(const QString& name)
{
    if (name == TransferFunction::itu709)
        return AVCOL_TRC_BT709;
    if (name == TransferFunction::smpte240M)
        return AVCOL_TRC_SMPTE240M;
    if (name == TransferFunction::itu2020)
        return AVCOL_TRC_BT2020_10;
    if (name == TransferFunction::pq)
        return AVCOL_TRC_SMPTE2084;
    if (name == TransferFunction::hlg)
        return AVCOL_TRC_ARIB_STD_B67;
    if (name == TransferFunction::linear)
        return AVCOL_TRC_LINEAR;
    if (name == TransferFunction::sRGB)
        return AVCOL_TRC_IEC61966_2_1;
    const int value = av_color_transfer_from_name(name.toUtf8().constData());
    return value < 0 ? AVCOL_TRC_UNSPECIFIED : static_cast<AVColorTransferCharacteristic>(value);
}

AVColorSpace matrixFromName(const QString& name)
{
    if (name == YCbCrMatrix::itu709)
        return AVCOL_SPC_BT709;
    if (name == YCbCrMatrix::itu601)
        return AVCOL_SPC_SMPTE170M;
    if (name == YCbCrMatrix::smpte240M)
        return AVCOL_SPC_SMPTE240M;
    if (name == YCbCrMatrix::itu2020)
        return AVCOL_SPC_BT2020_NCL;
    const int value = av_color_space_from_name(name.toUtf8().constData());
    return value < 0 ? AVCOL_SPC_UNSPECIFIED : static_cast<AVColorSpace>(value);
}

MediaError noEncoder(const char* name)
{
    return MediaError::media(
        MediaError::encoderNotFound,
        QStringLiteral("No encoder for %1 in this build").arg(QString::fromUtf8(name)));
}

} // namespace

VideoEncoder::VideoEncoder(const VideoEncoding& encoding, FileType fileType,
                           const SettingsDictionary& colourHint, double framesPerSecond)
    : m_encoding(encoding)
    , m_fileType(fileType)
    , m_framesPerSecond(framesPerSecond)
{
    switch (encoding.codec) {
    case EncodedCodec::h264:
        m_encoderName = "libx264";
        m_pixelFormat = AV_PIX_FMT_YUV420P;
        break;
    case EncodedCodec::hevc:
        m_encoderName = "libx265";
        m_pixelFormat = AV_PIX_FMT_YUV420P;
        break;
    case EncodedCodec::proRes422:
        m_encoderName = "prores_ks";
        m_pixelFormat = AV_PIX_FMT_YUV422P10LE;
        break;
    case EncodedCodec::proRes4444:
        m_encoderName = "prores_ks";
        m_pixelFormat = AV_PIX_FMT_YUVA444P10LE;
        break;
    default:
        break;
    }
    m_primaries =
        primariesFromName(colourHint.value(FormatDescriptionExtension::colorPrimaries).toString());
    m_transfer =
        transferFromName(colourHint.value(FormatDescriptionExtension::transferFunction).toString());
    m_matrix = matrixFromName(colourHint.value(FormatDescriptionExtension::yCbCrMatrix).toString());
    m_colourSeen = m_primaries != AVCOL_PRI_UNSPECIFIED || m_transfer != AVCOL_TRC_UNSPECIFIED ||
                   m_matrix != AVCOL_SPC_UNSPECIFIED;
}

VideoEncoder::~VideoEncoder()
{
    sws_freeContext(m_scaler);
}

bool VideoEncoder::hasEncoder() const
{
    return m_encoderName && avcodec_find_encoder_by_name(m_encoderName);
}

void VideoEncoder::open(AVFormatContext* muxer)
{
    quietFfmpegLogging(); // the encoders talk at their opening
    const AVCodec* codec = m_encoderName ? avcodec_find_encoder_by_name(m_encoderName) : nullptr;
    if (!codec)
        throw noEncoder(m_encoderName ? m_encoderName : "this codec");
    m_context.reset(avcodec_alloc_context3(codec));
    m_frame.reset(av_frame_alloc());
    m_packet.reset(av_packet_alloc());
    if (!m_context || !m_frame || !m_packet)
        throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));

    AVCodecContext& context = *m_context;
    context.width = m_encoding.width;
    context.height = m_encoding.height;
    context.pix_fmt = m_pixelFormat;
    context.time_base = AVRational{1, timescale};
    // x265 shares its bit rate out by this rate, not by the pictures' times.
    context.framerate = m_framesPerSecond > 0 && std::isfinite(m_framesPerSecond)
                            ? av_d2q(m_framesPerSecond, 1 << 16)
                            : AVRational{assumedFramesPerSecond, 1};
    context.sample_aspect_ratio = AVRational{1, 1};
    context.color_primaries = m_primaries;
    context.color_trc = m_transfer;
    context.colorspace = m_matrix;
    context.thread_count = 0; // every core
    if (muxer->oformat->flags & AVFMT_GLOBALHEADER)
        context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    AVDictionary* options = nullptr;
    switch (m_encoding.codec) {
    case EncodedCodec::h264:
        context.bit_rate = m_encoding.bitRate;
        av_dict_set(&options, "profile", "high", 0);
        av_dict_set(&options, "coder", m_encoding.cabac ? "cabac" : "cavlc", 0);
        break;
    case EncodedCodec::hevc:
        context.bit_rate = m_encoding.bitRate;
        av_dict_set(&options, "x265-params", "log-level=error", 0);
        break;
    case EncodedCodec::proRes422:
    case EncodedCodec::proRes4444:
        av_dict_set(&options, "profile",
                    m_encoding.codec == EncodedCodec::proRes422 ? "standard" : "4444", 0);
        if (m_encoding.quality) {
            context.flags |= AV_CODEC_FLAG_QSCALE;
            context.global_quality = proResQuantiser(*m_encoding.quality) * FF_QP2LAMBDA;
        }
        break;
    default:
        break;
    }
    int result = avcodec_open2(&context, codec, &options);
    av_dict_free(&options);
    if (result < 0)
        throw mediaErrorFromFfmpeg(
            result,
            QStringLiteral("Cannot open the %1 encoder").arg(QString::fromUtf8(codec->name)));
    m_stream = avformat_new_stream(muxer, nullptr);
    if (!m_stream)
        throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));
    result = avcodec_parameters_from_context(m_stream->codecpar, &context);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot describe the video stream"));
    if (m_encoding.codec == EncodedCodec::hevc)
        m_stream->codecpar->codec_tag = MKTAG('h', 'v', 'c', '1');
    m_stream->time_base = context.time_base;
    m_stream->avg_frame_rate = AVRational{0, 1};
}

void VideoEncoder::adoptColourTags(const AVFrame& source)
{
    // Without a hint the first picture tells; the container's description is written at the
    // end, so it still takes them.
    if (m_colourSeen)
        return;
    m_colourSeen = true;
    if (source.color_primaries != AVCOL_PRI_UNSPECIFIED)
        m_stream->codecpar->color_primaries = source.color_primaries;
    if (source.color_trc != AVCOL_TRC_UNSPECIFIED)
        m_stream->codecpar->color_trc = source.color_trc;
    if (source.colorspace != AVCOL_SPC_UNSPECIFIED)
        m_stream->codecpar->color_space = source.colorspace;
}

void VideoEncoder::convert(const AVFrame& source)
{
    const int result = av_frame_make_writable(m_frame.get());
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot make a video frame"));
    m_scaler = sws_getCachedContext(
        m_scaler, source.width, source.height, static_cast<AVPixelFormat>(source.format),
        m_encoding.width, m_encoding.height, m_pixelFormat, SWS_BICUBIC, nullptr, nullptr, nullptr);
    if (!m_scaler)
        throw MediaError::media(MediaError::unknown,
                                QStringLiteral("Cannot convert the picture for the encoder"));
    const int scaled = sws_scale(m_scaler, source.data, source.linesize, 0, source.height,
                                 m_frame->data, m_frame->linesize);
    if (scaled < 0)
        throw mediaErrorFromFfmpeg(scaled, QStringLiteral("Cannot convert the picture"));
}

void VideoEncoder::encode(const PixelBuffer& picture, MediaTime sessionOffset, MediaTime duration,
                          PacketWriter& writer)
{
    if (m_finished || !m_context)
        return;
    const AVFrame& source = picture.state().frame();
    if (source.width <= 0 || source.height <= 0)
        throw MediaError::media(MediaError::unknown, QStringLiteral("An empty picture"));
    adoptColourTags(source);
    AVFrame* frame = nullptr;
    if (source.format == m_pixelFormat && source.width == m_encoding.width &&
        source.height == m_encoding.height) {
        // Already in the encoder's form: handed over as it is.
        av_frame_unref(m_frame.get());
        const int result = av_frame_ref(m_frame.get(), &source);
        if (result < 0)
            throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot encode video"));
        frame = m_frame.get();
    } else {
        if (!m_frame->buf[0] || m_frame->width != m_encoding.width ||
            m_frame->format != m_pixelFormat) {
            av_frame_unref(m_frame.get());
            m_frame->format = m_pixelFormat;
            m_frame->width = m_encoding.width;
            m_frame->height = m_encoding.height;
            const int result = av_frame_get_buffer(m_frame.get(), 0);
            if (result < 0)
                throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot make a video frame"));
        }
        convert(source);
        frame = m_frame.get();
    }
    frame->pict_type = AV_PICTURE_TYPE_NONE;
    frame->sample_aspect_ratio = AVRational{1, 1};
    frame->color_primaries = m_context->color_primaries;
    frame->color_trc = m_context->color_trc;
    frame->colorspace = m_context->colorspace;
    std::int64_t pts = sessionOffset.isValid
                           ? av_rescale(sessionOffset.value, timescale, sessionOffset.timescale)
                           : 0;
    // Encoders need rising times; a picture at the time of the one before it moves on a tick.
    if (pts <= m_lastPts)
        pts = m_lastPts + 1;
    if (m_lastPts != INT64_MIN) {
        m_lastGap = pts - m_lastPts;
        if (auto previous = m_durations.find(m_lastPts);
            previous != m_durations.end() && previous->second == 0)
            previous->second = m_lastGap;
    }
    m_lastPts = pts;
    frame->pts = pts;
    m_durations[pts] = duration.isValid && duration.value > 0
                           ? av_rescale(duration.value, timescale, duration.timescale)
                           : 0;
    sendFrame(frame, writer);
    if (frame == m_frame.get() && source.buf[0] && m_frame->buf[0] &&
        m_frame->buf[0]->buffer == source.buf[0]->buffer)
        av_frame_unref(m_frame.get());
}

void VideoEncoder::finish(PacketWriter& writer)
{
    if (m_finished || !m_context)
        return;
    m_finished = true;
    if (auto last = m_durations.find(m_lastPts); last != m_durations.end() && last->second == 0)
        last->second = m_lastGap;
    sendFrame(nullptr, writer);
}

void VideoEncoder::sendFrame(AVFrame* frame, PacketWriter& writer)
{
    const int result = avcodec_send_frame(m_context.get(), frame);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot encode video"));
    receivePackets(writer);
}

void VideoEncoder::receivePackets(PacketWriter& writer)
{
    for (;;) {
        const int result = avcodec_receive_packet(m_context.get(), m_packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return;
        if (result < 0)
            throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot encode video"));
        if (auto shown = m_durations.find(m_packet->pts); shown != m_durations.end()) {
            if (m_packet->duration <= 0 && shown->second > 0)
                m_packet->duration = shown->second;
            m_durations.erase(shown);
        }
        writer.writePacket(m_packet.get(), m_stream, m_context->time_base);
        av_packet_unref(m_packet.get());
    }
}

} // namespace Platform::Internal
