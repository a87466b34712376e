// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/ChannelGroupResampler.h"

#include "platform/media/internal/FfmpegError.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

#include <QString>

#include <cstddef>
#include <cstdint>

namespace Platform::Internal {

ChannelGroupResampler::ChannelGroupResampler(int inputRate, int outputRate, int firstChannel,
                                             int channelCount)
    : m_first(firstChannel)
    , m_count(channelCount)
{
    AVChannelLayout layout = {};
    av_channel_layout_default(&layout, channelCount);
    SwrContext* context = nullptr;
    int result = swr_alloc_set_opts2(&context, &layout, AV_SAMPLE_FMT_FLT, outputRate, &layout,
                                     AV_SAMPLE_FMT_FLT, inputRate, 0, nullptr);
    av_channel_layout_uninit(&layout);
    m_context.reset(context);
    if (result < 0 || !context)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot resample audio"));
    av_opt_set_int(context, "resampler", SWR_ENGINE_SOXR, 0);
    result = swr_init(context);
    if (result < 0) {
        // A build without soxr falls back to the built-in resampler, as the others do; it too
        // treats every channel on its own.
        av_opt_set_int(context, "resampler", SWR_ENGINE_SWR, 0);
        result = swr_init(context);
    }
    if (result < 0)
        throw mediaErrorFromFfmpeg(result, QStringLiteral("Cannot resample audio"));
}

int ChannelGroupResampler::convert(const float* input, int inputChannels, int frames,
                                   std::vector<float>& output)
{
    const auto count = static_cast<std::size_t>(m_count);
    const std::size_t needed = static_cast<std::size_t>(frames) * count;
    if (m_gathered.size() < needed)
        m_gathered.resize(needed);
    const auto stride = static_cast<std::size_t>(inputChannels);
    for (std::size_t frame = 0; frame < static_cast<std::size_t>(frames); ++frame) {
        const float* from = input + frame * stride + static_cast<std::size_t>(m_first);
        float* to = m_gathered.data() + frame * count;
        for (std::size_t channel = 0; channel < count; ++channel)
            to[channel] = from[channel];
    }
    return run(m_gathered.data(), frames, output, 0);
}

int ChannelGroupResampler::flush(std::vector<float>& output)
{
    int total = 0;
    for (;;) {
        const int made = run(nullptr, 0, output, total);
        if (made <= 0)
            return total;
        total += made;
    }
}

int ChannelGroupResampler::run(const float* gathered, int frames, std::vector<float>& output,
                               int offset)
{
    // The resampler always gets room for all it can give.
    const int room = swr_get_out_samples(m_context.get(), frames);
    if (room < 0)
        throw mediaErrorFromFfmpeg(room, QStringLiteral("Cannot resample audio"));
    const std::size_t start = static_cast<std::size_t>(offset) * static_cast<std::size_t>(m_count);
    const std::size_t needed =
        start + static_cast<std::size_t>(room) * static_cast<std::size_t>(m_count);
    if (output.size() < needed)
        output.resize(needed);
    auto* out = reinterpret_cast<std::uint8_t*>(output.data() + start);
    const auto* in = reinterpret_cast<const std::uint8_t*>(gathered);
    const int made = swr_convert(m_context.get(), &out, room, gathered ? &in : nullptr, frames);
    if (made < 0)
        throw mediaErrorFromFfmpeg(made, QStringLiteral("Cannot resample audio"));
    return made;
}

} // namespace Platform::Internal
