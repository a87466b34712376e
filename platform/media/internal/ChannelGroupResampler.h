// SPDX-License-Identifier: GPL-3.0-or-later
// Resamples a run of adjacent channels of an interleaved float stream with soxr, into
// interleaved float of those channels alone. soxr treats every channel on its own, so the groups
// of a stream resampled apart give exactly the samples one resampler over all of it gives: two
// groups can be resampled on two threads. Not thread-safe: one thread at a time.
#pragma once

#include "platform/media/internal/FfmpegPointers.h"

#include <vector>

namespace Platform::Internal {

class ChannelGroupResampler
{
public:
    // Channels [firstChannel, firstChannel + channelCount) from inputRate to outputRate.
    // Throws MediaError when the resampler cannot be set up.
    ChannelGroupResampler(int inputRate, int outputRate, int firstChannel, int channelCount);

    int firstChannel() const { return m_first; }
    int channelCount() const { return m_count; }

    // Resamples `frames` frames of `input` (interleaved, `inputChannels` to a frame) into
    // `output`, which grows when it must; returns the frames written. Throws MediaError.
    int convert(const float* input, int inputChannels, int frames, std::vector<float>& output);
    // Everything the resampler still holds at the end of the stream, into `output`; returns
    // the frames written. Throws MediaError.
    int flush(std::vector<float>& output);

private:
    // Resamples into `output` from frame `offset` on.
    int run(const float* gathered, int frames, std::vector<float>& output, int offset);

    ResamplerPtr m_context;
    const int m_first;
    const int m_count;
    // The group's channels taken out of the interleaved input.
    std::vector<float> m_gathered;
};

} // namespace Platform::Internal
