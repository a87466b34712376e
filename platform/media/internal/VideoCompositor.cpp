// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/VideoCompositor.h"

#include "platform/media/MediaError.h"
#include "platform/media/internal/AssetState.h"
#include "platform/media/internal/FfmpegError.h"
#include "platform/media/internal/PixelBufferState.h"
#include "platform/media/internal/ReaderSource.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/mathematics.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cmath>

namespace Platform::Internal {

namespace {

constexpr double epsilon = 1e-9;

bool isNear(double value, double target)
{
    return std::abs(value - target) < epsilon;
}

// A planar form without chroma subsampling and of the source's depth, so that a picture can
// be turned and mirrored pixel by pixel.
AVPixelFormat fullResolutionForm(AVPixelFormat source)
{
    const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(source);
    const bool deep = descriptor && descriptor->comp[0].depth > 8;
    const bool alpha = descriptor && (descriptor->flags & AV_PIX_FMT_FLAG_ALPHA);
    const bool rgb = descriptor && (descriptor->flags & AV_PIX_FMT_FLAG_RGB);
    if (rgb)
        return deep ? (alpha ? AV_PIX_FMT_GBRAP16LE : AV_PIX_FMT_GBRP16LE)
                    : (alpha ? AV_PIX_FMT_GBRAP : AV_PIX_FMT_GBRP);
    return deep ? (alpha ? AV_PIX_FMT_YUVA444P16LE : AV_PIX_FMT_YUV444P16LE)
                : (alpha ? AV_PIX_FMT_YUVA444P : AV_PIX_FMT_YUV444P);
}

bool isPlanarYuv(AVPixelFormat format)
{
    const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(format);
    return descriptor && (descriptor->flags & AV_PIX_FMT_FLAG_PLANAR) &&
           !(descriptor->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_HWACCEL |
                                  AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM)) &&
           descriptor->nb_components >= 3 && descriptor->comp[1].plane != descriptor->comp[2].plane;
}

std::shared_ptr<PixelBuffer> wrap(FramePtr frame)
{
    return std::make_shared<PixelBuffer>(std::make_unique<PixelBufferState>(std::move(frame)));
}

AVColorRange rangeOf(const AVFrame& frame)
{
    if (frame.color_range == AVCOL_RANGE_JPEG)
        return AVCOL_RANGE_JPEG;
    const auto format = static_cast<AVPixelFormat>(frame.format);
    if (format == AV_PIX_FMT_YUVJ420P || format == AV_PIX_FMT_YUVJ422P ||
        format == AV_PIX_FMT_YUVJ444P)
        return AVCOL_RANGE_JPEG;
    return AVCOL_RANGE_MPEG;
}

FramePtr blackFrame(int width, int height, AVPixelFormat format, AVColorRange range)
{
    FramePtr frame(av_frame_alloc());
    if (!frame)
        return nullptr;
    frame->format = format;
    frame->width = width;
    frame->height = height;
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        return nullptr;
    std::ptrdiff_t linesizes[4] = {};
    for (int plane = 0; plane < 4; ++plane)
        linesizes[plane] = frame->linesize[plane];
    if (av_image_fill_black(frame->data, linesizes, format, range, width, height) < 0)
        return nullptr;
    const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(format);
    if (descriptor && (descriptor->flags & AV_PIX_FMT_FLAG_ALPHA)) {
        // Covered or not, the picture is opaque.
        const int alphaPlane = descriptor->comp[3].plane;
        const int bytes = descriptor->comp[3].depth > 8 ? 2 : 1;
        for (int row = 0; row < height; ++row)
            std::fill_n(frame->data[alphaPlane] +
                            static_cast<std::ptrdiff_t>(row) * frame->linesize[alphaPlane],
                        static_cast<std::ptrdiff_t>(width) * bytes, std::uint8_t{0xFF});
    }
    frame->color_range = range;
    return frame;
}

MediaError outOfMemory()
{
    return MediaError::media(MediaError::unknown, QStringLiteral("Out of memory"));
}

} // namespace

const AssetTrack& VideoCompositor::drawnTrack(const std::vector<AssetTrack>& tracks,
                                              const VideoComposition& composition)
{
    if (!composition.instructions.empty() &&
        !composition.instructions.front().layerInstructions.empty()) {
        const AssetTrack& layerTrack =
            composition.instructions.front().layerInstructions.front().assetTrack();
        for (const AssetTrack& track : tracks) {
            if (track == layerTrack)
                return track;
        }
    }
    return tracks.front();
}

VideoCompositor::VideoCompositor(ReaderSource& source, const std::vector<AssetTrack>& tracks,
                                 const VideoComposition& composition)
    : m_decoder(source, drawnTrack(tracks, composition).trackId())
    , m_renderWidth(static_cast<int>(composition.renderSize.width))
    , m_renderHeight(static_cast<int>(composition.renderSize.height))
    , m_frameDuration(composition.frameDuration)
{
    const AssetTrack& track = drawnTrack(tracks, composition);
    m_naturalSize = track.naturalSize();
    if (!composition.instructions.empty()) {
        const VideoCompositionInstruction& instruction = composition.instructions.front();
        if (!instruction.layerInstructions.empty())
            m_transform = instruction.layerInstructions.front().transform();
        if (instruction.timeRange.duration.isValid)
            m_endSeconds =
                instruction.timeRange.start.seconds() + instruction.timeRange.duration.seconds();
    }
    if (m_endSeconds <= 0.0)
        m_endSeconds = track.assetState()->info().duration.seconds();
}

VideoCompositor::~VideoCompositor()
{
    sws_freeContext(m_scaler);
}

bool VideoCompositor::isAtOrBefore(MediaTime time, std::int64_t gridIndex) const
{
    // time <= gridIndex · frameDuration, exactly.
    return av_compare_ts(time.value, AVRational{1, time.timescale},
                         gridIndex * m_frameDuration.value,
                         AVRational{1, m_frameDuration.timescale}) <= 0;
}

void VideoCompositor::advanceSourceTo(std::int64_t gridIndex)
{
    while (!m_sourceEnded) {
        if (!m_upcoming) {
            m_upcoming = m_decoder.next();
            if (!m_upcoming) {
                m_sourceEnded = true;
                return;
            }
        }
        if (!isAtOrBefore(m_upcoming->presentationTime(), gridIndex))
            return;
        m_current = std::move(m_upcoming);
        m_drawn.reset();
    }
}

std::shared_ptr<SampleBuffer> VideoCompositor::next()
{
    const double time = m_frameDuration.seconds() * static_cast<double>(m_gridIndex);
    if (time >= m_endSeconds - epsilon)
        return nullptr;
    advanceSourceTo(m_gridIndex);
    if (!m_drawn)
        m_drawn = m_current ? draw(*m_current->imageBuffer()) : drawBlack();
    const MediaTime presentation =
        MediaTime::make(m_gridIndex * m_frameDuration.value, m_frameDuration.timescale);
    ++m_gridIndex;
    return SampleBuffer::makeVideo(presentation, m_frameDuration, m_drawn);
}

std::shared_ptr<PixelBuffer> VideoCompositor::drawBlack()
{
    FramePtr frame =
        blackFrame(m_renderWidth, m_renderHeight, AV_PIX_FMT_YUV420P, AVCOL_RANGE_MPEG);
    if (!frame)
        throw outOfMemory();
    return wrap(std::move(frame));
}

std::shared_ptr<PixelBuffer> VideoCompositor::draw(const PixelBuffer& source)
{
    const AVFrame& frame = source.state().frame();
    // From the stored picture's pixels to the render area: the natural size may stretch the
    // stored width (non-square pixels) before the layer's transform applies.
    const double stretchX = m_naturalSize.width > 0 ? m_naturalSize.width / frame.width : 1.0;
    const double stretchY = m_naturalSize.height > 0 ? m_naturalSize.height / frame.height : 1.0;
    const AffineTransform map =
        AffineTransform::concat(AffineTransform::makeScale(stretchX, stretchY), m_transform);
    const auto format = static_cast<AVPixelFormat>(frame.format);
    const bool plainScale = isNear(map.b, 0.0) && isNear(map.c, 0.0) && map.a > 0.0 &&
                            map.d > 0.0 && isNear(map.tx, 0.0) && isNear(map.ty, 0.0);
    if (plainScale && isPlanarYuv(format)) {
        const int width = static_cast<int>(std::lround(map.a * frame.width));
        const int height = static_cast<int>(std::lround(map.d * frame.height));
        if (width == m_renderWidth && height == m_renderHeight && width == frame.width &&
            height == frame.height)
            return std::make_shared<PixelBuffer>(std::make_unique<PixelBufferState>(frame));
        if (width >= 1 && height >= 1 && width <= m_renderWidth && height <= m_renderHeight)
            return drawScaled(frame, width, height);
    }
    return drawMapped(frame);
}

std::shared_ptr<PixelBuffer> VideoCompositor::drawScaled(const AVFrame& frame, int width,
                                                         int height)
{
    const auto format = static_cast<AVPixelFormat>(frame.format);
    FramePtr canvas = blackFrame(m_renderWidth, m_renderHeight, format, rangeOf(frame));
    if (!canvas)
        throw outOfMemory();
    m_scaler = sws_getCachedContext(m_scaler, frame.width, frame.height, format, width, height,
                                    format, SWS_BICUBIC, nullptr, nullptr, nullptr);
    if (!m_scaler)
        throw outOfMemory();
    const int result = sws_scale(m_scaler, frame.data, frame.linesize, 0, frame.height,
                                 canvas->data, canvas->linesize);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot draw the picture"));
    av_frame_copy_props(canvas.get(), &frame);
    return wrap(std::move(canvas));
}

std::shared_ptr<PixelBuffer> VideoCompositor::drawMapped(const AVFrame& frame)
{
    const double stretchX = m_naturalSize.width > 0 ? m_naturalSize.width / frame.width : 1.0;
    const double stretchY = m_naturalSize.height > 0 ? m_naturalSize.height / frame.height : 1.0;
    const AffineTransform map =
        AffineTransform::concat(AffineTransform::makeScale(stretchX, stretchY), m_transform);
    // First scale the picture, in its own orientation, to the size it has in the render area;
    // then place every render pixel from the nearest scaled pixel, which for turns by quarter
    // circles and mirrors is an exact permutation.
    const int scaledWidth =
        std::max(1, static_cast<int>(std::lround(std::hypot(map.a, map.b) * frame.width)));
    const int scaledHeight =
        std::max(1, static_cast<int>(std::lround(std::hypot(map.c, map.d) * frame.height)));
    if (static_cast<long long>(scaledWidth) * scaledHeight > 16384LL * 16384LL)
        throw MediaError::media(MediaError::invalidSourceMedia,
                                QStringLiteral("The composition's transform is too large"));
    const auto sourceFormat = static_cast<AVPixelFormat>(frame.format);
    const AVPixelFormat form = fullResolutionForm(sourceFormat);
    const AVColorRange range = rangeOf(frame);
    FramePtr scaled(av_frame_alloc());
    if (!scaled)
        throw outOfMemory();
    scaled->format = form;
    scaled->width = scaledWidth;
    scaled->height = scaledHeight;
    if (av_frame_get_buffer(scaled.get(), 0) < 0)
        throw outOfMemory();
    m_scaler = sws_getCachedContext(m_scaler, frame.width, frame.height, sourceFormat, scaledWidth,
                                    scaledHeight, form, SWS_BICUBIC, nullptr, nullptr, nullptr);
    if (!m_scaler)
        throw outOfMemory();
    int result = sws_scale(m_scaler, frame.data, frame.linesize, 0, frame.height, scaled->data,
                           scaled->linesize);
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot draw the picture"));

    FramePtr canvas = blackFrame(m_renderWidth, m_renderHeight, form, range);
    if (!canvas)
        throw outOfMemory();
    // Scaled pixel (u, v) sits at map(u · frame.width / scaledWidth, …) in the render area.
    const AffineTransform toRender = AffineTransform::concat(
        AffineTransform::makeScale(static_cast<double>(frame.width) / scaledWidth,
                                   static_cast<double>(frame.height) / scaledHeight),
        map);
    const double determinant = toRender.a * toRender.d - toRender.b * toRender.c;
    if (std::abs(determinant) < epsilon)
        return wrap(std::move(canvas));
    const double ia = toRender.d / determinant;
    const double ib = -toRender.b / determinant;
    const double ic = -toRender.c / determinant;
    const double id = toRender.a / determinant;
    const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(form);
    const int bytes = descriptor->comp[0].depth > 8 ? 2 : 1;
    const int planes = av_pix_fmt_count_planes(form);
    for (int y = 0; y < m_renderHeight; ++y) {
        for (int x = 0; x < m_renderWidth; ++x) {
            const double px = x + 0.5 - toRender.tx;
            const double py = y + 0.5 - toRender.ty;
            const double u = ia * px + ic * py;
            const double v = ib * px + id * py;
            if (u < 0.0 || v < 0.0 || u >= scaledWidth || v >= scaledHeight)
                continue;
            const auto su = static_cast<std::ptrdiff_t>(u);
            const auto sv = static_cast<std::ptrdiff_t>(v);
            for (int plane = 0; plane < planes; ++plane) {
                const std::uint8_t* from =
                    scaled->data[plane] + sv * scaled->linesize[plane] + su * bytes;
                std::uint8_t* to = canvas->data[plane] +
                                   static_cast<std::ptrdiff_t>(y) * canvas->linesize[plane] +
                                   static_cast<std::ptrdiff_t>(x) * bytes;
                std::copy_n(from, bytes, to);
            }
        }
    }
    av_frame_copy_props(canvas.get(), &frame);
    return wrap(std::move(canvas));
}

} // namespace Platform::Internal
