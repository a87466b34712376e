// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/VideoTrackDecoder.h"

#include "platform/media/MediaError.h"
#include "platform/media/internal/FfmpegError.h"
#include "platform/media/internal/InputFile.h"
#include "platform/media/internal/PixelBufferState.h"
#include "platform/media/internal/ReaderSource.h"

#include <QThread>

#include <algorithm>
#include <limits>

namespace Platform::Internal {

namespace {

// A stream whose every packet is refused is broken, not merely damaged in places.
constexpr int maximumRefusalsInARow = 250;

} // namespace

VideoTrackDecoder::VideoTrackDecoder(ReaderSource& source, int streamIndex)
    : m_source(source)
    , m_streamIndex(streamIndex)
    , m_frame(av_frame_alloc())
{
    const AVStream& stream = *source.stream(streamIndex);
    const AVCodecParameters& parameters = *stream.codecpar;
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    if (!codec)
        throw MediaError::media(MediaError::decoderNotFound,
                                QStringLiteral("No decoder for the video codec “%1”")
                                    .arg(QString::fromUtf8(avcodec_get_name(parameters.codec_id))));
    if (static_cast<long long>(parameters.width) * parameters.height > InputFile::maximumPixels)
        throw MediaError::media(MediaError::invalidSourceMedia,
                                QStringLiteral("The picture size %1×%2 is too large")
                                    .arg(parameters.width)
                                    .arg(parameters.height));
    m_decoder.reset(avcodec_alloc_context3(codec));
    if (!m_decoder || !m_frame)
        throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));
    int result = avcodec_parameters_to_context(m_decoder.get(), &parameters);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot set up the video decoder"));
    m_decoder->pkt_timebase = stream.time_base;
    m_decoder->thread_count = std::clamp(QThread::idealThreadCount(), 1, 16);
    m_decoder->thread_type = FF_THREAD_FRAME | FF_THREAD_SLICE;
    m_decoder->max_pixels = InputFile::maximumPixels;
    result = avcodec_open2(m_decoder.get(), codec, nullptr);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot open the video decoder"));

    m_timeBase = stream.time_base;
    // Times keep the stream's own ticks where its time base is 1/n.
    if (m_timeBase.num == 1 && m_timeBase.den > 0) {
        m_timescale = m_timeBase.den;
        m_ticksPerUnit = 1;
    } else if (m_timeBase.num > 0 && m_timeBase.den > 0) {
        m_timescale = m_timeBase.den;
        m_ticksPerUnit = m_timeBase.num;
    }
    if (stream.avg_frame_rate.num > 0 && stream.avg_frame_rate.den > 0)
        m_defaultDuration = av_rescale_q(1, av_inv_q(stream.avg_frame_rate), m_timeBase);
}

VideoTrackDecoder::~VideoTrackDecoder() = default;

MediaTime VideoTrackDecoder::timeOf(std::int64_t streamTicks) const
{
    return MediaTime::make(streamTicks * m_ticksPerUnit, m_timescale);
}

std::shared_ptr<SampleBuffer> VideoTrackDecoder::next()
{
    for (;;) {
        const int received = avcodec_receive_frame(m_decoder.get(), m_frame.get());
        if (received == 0) {
            m_refusals = 0;
            std::int64_t pts = m_frame->best_effort_timestamp;
            if (pts == AV_NOPTS_VALUE)
                pts = m_frame->pts != AV_NOPTS_VALUE ? m_frame->pts : 0;
            const std::int64_t ticks =
                m_frame->pkt_duration > 0 ? m_frame->pkt_duration : m_defaultDuration;
            auto picture =
                std::make_shared<PixelBuffer>(std::make_unique<PixelBufferState>(*m_frame));
            av_frame_unref(m_frame.get());
            return SampleBuffer::makeVideo(
                timeOf(pts), ticks > 0 ? timeOf(ticks) : MediaTime::invalid(), std::move(picture));
        }
        if (received == AVERROR_EOF)
            return nullptr;
        if (received != AVERROR(EAGAIN) && ++m_refusals > maximumRefusalsInARow)
            throw MediaError::media(MediaError::invalidSourceMedia,
                                    QStringLiteral("The video stream cannot be decoded: %1")
                                        .arg(ffmpegErrorText(received)));
        if (m_drained)
            return nullptr;
        AVPacket* packet = m_source.nextPacket(m_streamIndex);
        if (!packet)
            m_drained = true;
        const int sent = avcodec_send_packet(m_decoder.get(), packet);
        m_source.recycle(packet);
        if (sent < 0 && sent != AVERROR_EOF && sent != AVERROR(EAGAIN) &&
            ++m_refusals > maximumRefusalsInARow)
            throw MediaError::media(MediaError::invalidSourceMedia,
                                    QStringLiteral("The video stream cannot be decoded: %1")
                                        .arg(ffmpegErrorText(sent)));
    }
}

} // namespace Platform::Internal
