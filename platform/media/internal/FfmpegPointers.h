// SPDX-License-Identifier: GPL-3.0-or-later
// Owning pointers for the FFmpeg objects the media layer keeps, so every exit path frees them.
// Media layer internals only; any thread that owns the object.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>

namespace Platform::Internal {

struct CodecContextDeleter
{
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct FrameDeleter
{
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct PacketDeleter
{
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct ResamplerDeleter
{
    void operator()(SwrContext* context) const { swr_free(&context); }
};

struct ScalerDeleter
{
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};

using CodecContextPtr = std::unique_ptr<AVCodecContext, CodecContextDeleter>;
using FramePtr = std::unique_ptr<AVFrame, FrameDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, PacketDeleter>;
using ResamplerPtr = std::unique_ptr<SwrContext, ResamplerDeleter>;
using ScalerPtr = std::unique_ptr<SwsContext, ScalerDeleter>;

} // namespace Platform::Internal
