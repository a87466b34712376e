// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/PixelBufferState.h"

extern "C" {
#include <libavutil/imgutils.h>
}

namespace Platform::Internal {

PixelBufferState::PixelBufferState(const AVFrame& frame)
    : m_frame(av_frame_alloc())
{
    if (m_frame)
        av_frame_ref(m_frame.get(), &frame);
}

PixelBufferState::PixelBufferState(FramePtr frame)
    : m_frame(std::move(frame))
{}

FramePtr PixelBufferState::makeBlackFrame(int width, int height, AVPixelFormat format)
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
    const AVColorRange range = format == AV_PIX_FMT_BGRA ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    if (av_image_fill_black(frame->data, linesizes, format, range, width, height) < 0)
        return nullptr;
    if (format == AV_PIX_FMT_BGRA) {
        // Opaque black: the alpha bytes are 255.
        for (int row = 0; row < height; ++row) {
            std::uint8_t* pixel =
                frame->data[0] + static_cast<std::ptrdiff_t>(row) * frame->linesize[0];
            for (int column = 0; column < width; ++column)
                pixel[column * 4 + 3] = 255;
        }
    }
    frame->color_range = range;
    return frame;
}

bool PixelBufferState::lock()
{
    if (!m_frame || m_frame->width <= 0)
        return false;
    if (m_frame->format != AV_PIX_FMT_BGRA) {
        FramePtr bgra(av_frame_alloc());
        if (!bgra)
            return false;
        bgra->format = AV_PIX_FMT_BGRA;
        bgra->width = m_frame->width;
        bgra->height = m_frame->height;
        if (av_frame_get_buffer(bgra.get(), 0) < 0)
            return false;
        ScalerPtr scaler(sws_getContext(
            m_frame->width, m_frame->height, static_cast<AVPixelFormat>(m_frame->format),
            bgra->width, bgra->height, AV_PIX_FMT_BGRA, SWS_BICUBIC, nullptr, nullptr, nullptr));
        if (!scaler)
            return false;
        if (sws_scale_frame(scaler.get(), bgra.get(), m_frame.get()) < 0)
            return false;
        av_frame_copy_props(bgra.get(), m_frame.get());
        bgra->color_range = AVCOL_RANGE_JPEG;
        m_frame = std::move(bgra);
    } else if (av_frame_make_writable(m_frame.get()) < 0) {
        return false;
    }
    m_locked = true;
    return true;
}

std::uint8_t* PixelBufferState::bgraData() const
{
    return m_locked ? m_frame->data[0] : nullptr;
}

int PixelBufferState::bgraLinesize() const
{
    return m_locked ? m_frame->linesize[0] : 0;
}

} // namespace Platform::Internal
