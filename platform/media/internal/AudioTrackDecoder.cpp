// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/AudioTrackDecoder.h"

#include "platform/media/MediaError.h"
#include "platform/media/internal/FfmpegError.h"
#include "platform/media/internal/ReaderSource.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

#include <algorithm>
#include <cmath>

namespace Platform::Internal {

namespace {

// Channels without a known order are taken in the default order for their count, so that a
// remix has positions to work from.
AVChannelLayout orderedLayout(const AVChannelLayout& layout)
{
    AVChannelLayout result = {};
    if (layout.order == AV_CHANNEL_ORDER_UNSPEC || av_channel_layout_check(&layout) == 0)
        av_channel_layout_default(&result, layout.nb_channels);
    else
        av_channel_layout_copy(&result, &layout);
    return result;
}

} // namespace

AudioTrackDecoder::AudioTrackDecoder(ReaderSource& source, int streamIndex, Target target)
    : m_source(source)
    , m_streamIndex(streamIndex)
    , m_target(target)
    , m_frame(av_frame_alloc())
{
    const AVStream& stream = *source.stream(streamIndex);
    const AVCodecParameters& parameters = *stream.codecpar;
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    if (!codec)
        throw MediaError::media(MediaError::decoderNotFound,
                                QStringLiteral("No decoder for the audio codec “%1”")
                                    .arg(QString::fromUtf8(avcodec_get_name(parameters.codec_id))));
    m_decoder.reset(avcodec_alloc_context3(codec));
    if (!m_decoder || !m_frame)
        throw MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));
    int result = avcodec_parameters_to_context(m_decoder.get(), &parameters);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot set up the audio decoder"));
    m_decoder->pkt_timebase = stream.time_base;
    result = avcodec_open2(m_decoder.get(), codec, nullptr);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot open the audio decoder"));

    // QuickTime-family files state each track's exact length (their edit lists cut the
    // encoder's padding); FFmpeg trims the start but not the end, so the end is cut here.
    // Elsewhere a stated length may be an estimate and is not trusted.
    const bool statesExactLength = QByteArray(source.context()->iformat->name).startsWith("mov,");
    if (statesExactLength && stream.duration != AV_NOPTS_VALUE && stream.duration > 0) {
        const std::int64_t start = stream.start_time != AV_NOPTS_VALUE ? stream.start_time : 0;
        m_endTime = av_q2d(stream.time_base) * static_cast<double>(start + stream.duration);
    }

    m_outputFormat = target.format == SampleBuffer::SampleFormat::float32 ? AV_SAMPLE_FMT_FLT
                                                                          : AV_SAMPLE_FMT_S16;
    m_outputRate = target.sampleRate > 0 ? target.sampleRate : m_decoder->sample_rate;
    if (target.channelCount > 0)
        av_channel_layout_default(&m_outputLayout, target.channelCount);
    else if (m_decoder->ch_layout.nb_channels > 0)
        m_outputLayout = orderedLayout(m_decoder->ch_layout);
}

AudioTrackDecoder::~AudioTrackDecoder()
{
    av_channel_layout_uninit(&m_outputLayout);
    av_channel_layout_uninit(&m_resamplerLayout);
}

bool AudioTrackDecoder::matchesResamplerInput(const AVFrame& frame) const
{
    if (!m_resampler || frame.sample_rate != m_resamplerRate || frame.format != m_resamplerFormat)
        return false;
    AVChannelLayout layout = orderedLayout(frame.ch_layout);
    const bool same = av_channel_layout_compare(&layout, &m_resamplerLayout) == 0;
    av_channel_layout_uninit(&layout);
    return same;
}

void AudioTrackDecoder::configureResampler(const AVFrame& frame)
{
    // The output follows the first frame where the stream headers did not say.
    if (m_outputRate <= 0)
        m_outputRate = frame.sample_rate;
    if (m_outputLayout.nb_channels <= 0)
        m_outputLayout = orderedLayout(frame.ch_layout);

    av_channel_layout_uninit(&m_resamplerLayout);
    m_resamplerLayout = orderedLayout(frame.ch_layout);
    m_resamplerRate = frame.sample_rate;
    m_resamplerFormat = static_cast<AVSampleFormat>(frame.format);

    SwrContext* context = nullptr;
    int result =
        swr_alloc_set_opts2(&context, &m_outputLayout, m_outputFormat, m_outputRate,
                            &m_resamplerLayout, m_resamplerFormat, m_resamplerRate, 0, nullptr);
    m_resampler.reset(context);
    if (result < 0 || !context)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot convert the decoded audio"));
    if (m_resamplerRate != m_outputRate)
        av_opt_set_int(context, "resampler", SWR_ENGINE_SOXR, 0);
    result = swr_init(context);
    if (result < 0 && m_resamplerRate != m_outputRate) {
        // A build without soxr falls back to the built-in resampler.
        av_opt_set_int(context, "resampler", SWR_ENGINE_SWR, 0);
        result = swr_init(context);
    }
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot convert the decoded audio"));
}

int AudioTrackDecoder::convertPendingFrame(SampleBuffer& buffer, int filled)
{
    std::uint8_t* out = reinterpret_cast<std::uint8_t*>(buffer.bytes()) +
                        static_cast<std::ptrdiff_t>(filled) * buffer.bytesPerFrame();
    const int converted =
        swr_convert(m_resampler.get(), &out, buffer.capacityFrames() - filled,
                    const_cast<const std::uint8_t**>(m_frame->extended_data), m_frame->nb_samples);
    m_framePending = false;
    av_frame_unref(m_frame.get());
    if (converted < 0)
        throw mediaErrorFromFfmpeg(converted, QStringLiteral("Cannot convert the decoded audio"));
    return converted;
}

std::shared_ptr<SampleBuffer> AudioTrackDecoder::invalidBuffer()
{
    auto buffer = m_pool.acquire(m_target.format, m_outputRate, m_outputLayout.nb_channels, 0);
    buffer->setValid(false);
    buffer->setPresentationTime(MediaTime::make(m_nextSample, std::max(m_outputRate, 1)));
    return buffer;
}

std::shared_ptr<SampleBuffer> AudioTrackDecoder::finish(std::shared_ptr<SampleBuffer> buffer,
                                                        int filled)
{
    if (m_endTime > 0.0) {
        const auto endSample = static_cast<std::int64_t>(std::llround(m_endTime * m_outputRate));
        if (m_nextSample + filled >= endSample) {
            filled =
                static_cast<int>(std::clamp<std::int64_t>(endSample - m_nextSample, 0, filled));
            m_ended = true;
            if (filled == 0)
                return nullptr;
        }
    }
    buffer->setFrameCount(filled);
    buffer->setPresentationTime(MediaTime::make(m_nextSample, m_outputRate));
    m_nextSample += filled;
    return buffer;
}

std::shared_ptr<SampleBuffer> AudioTrackDecoder::next()
{
    if (m_ended)
        return nullptr;
    if (m_invalidPending) {
        m_invalidPending = false;
        return invalidBuffer();
    }

    std::shared_ptr<SampleBuffer> buffer;
    int filled = 0;
    for (;;) {
        if (m_framePending) {
            if (!matchesResamplerInput(*m_frame)) {
                // Rate or layout changed mid-stream: hand out what was made under the old
                // settings first, so that no converted sample is lost.
                if (filled > 0)
                    break;
                configureResampler(*m_frame);
            }
            const int needed = swr_get_out_samples(m_resampler.get(), m_frame->nb_samples);
            if (!buffer)
                buffer = m_pool.acquire(m_target.format, m_outputRate, m_outputLayout.nb_channels,
                                        std::max(framesPerBuffer, needed));
            if (needed > buffer->capacityFrames() - filled)
                break;
            filled += convertPendingFrame(*buffer, filled);
            continue;
        }
        if (m_decoderDrained) {
            // Samples the resampler still holds at the very end. It always gets room for all
            // it can give: the soxr engine must never be left holding output.
            const int needed = m_resampler ? swr_get_out_samples(m_resampler.get(), 0) : 0;
            if (needed <= 0) {
                m_ended = true;
                break;
            }
            if (!buffer)
                buffer = m_pool.acquire(m_target.format, m_outputRate, m_outputLayout.nb_channels,
                                        std::max(framesPerBuffer, needed));
            if (needed > buffer->capacityFrames() - filled)
                break;
            std::uint8_t* out = reinterpret_cast<std::uint8_t*>(buffer->bytes()) +
                                static_cast<std::ptrdiff_t>(filled) * buffer->bytesPerFrame();
            const int flushed = swr_convert(m_resampler.get(), &out, needed, nullptr, 0);
            if (flushed <= 0) {
                m_ended = true;
                break;
            }
            filled += flushed;
            continue;
        }
        const int received = avcodec_receive_frame(m_decoder.get(), m_frame.get());
        if (received == 0) {
            m_framePending = true;
            if (!m_timeKnown) {
                m_timeKnown = true;
                const std::int64_t pts = m_frame->best_effort_timestamp;
                if (pts != AV_NOPTS_VALUE && m_frame->sample_rate > 0) {
                    const int rate = m_outputRate > 0 ? m_outputRate : m_frame->sample_rate;
                    m_nextSample = av_rescale_q(pts, m_decoder->pkt_timebase, AVRational{1, rate});
                }
            }
            continue;
        }
        if (received == AVERROR_EOF) {
            m_decoderDrained = true;
            continue;
        }
        if (received == AVERROR(EAGAIN)) {
            AVPacket* packet = m_source.nextPacket(m_streamIndex);
            const int sent = avcodec_send_packet(m_decoder.get(), packet);
            m_source.recycle(packet);
            if (sent >= 0 || sent == AVERROR_EOF)
                continue;
        }
        // The decoder refused this piece of the stream: report it as an invalid buffer after
        // whatever was decoded before it.
        if (filled > 0) {
            m_invalidPending = true;
            break;
        }
        return invalidBuffer();
    }
    if (filled == 0)
        return m_ended ? nullptr : next();
    return finish(std::move(buffer), filled);
}

} // namespace Platform::Internal
