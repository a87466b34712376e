// SPDX-License-Identifier: GPL-3.0-or-later
// Decodes one video stream of a reader into sample buffers whose image buffers keep the
// decoder's own frames (no conversion here), with the stream's own presentation times. Uses
// the decoder's threads. Called under the reader's lock.
#pragma once

#include "platform/media/SampleBuffer.h"
#include "platform/media/internal/FfmpegPointers.h"

#include <memory>

namespace Platform::Internal {

class ReaderSource;

class VideoTrackDecoder
{
public:
    // Opens the decoder of `streamIndex`. Throws MediaError (decoderNotFound, …).
    VideoTrackDecoder(ReaderSource& source, int streamIndex);
    ~VideoTrackDecoder();
    VideoTrackDecoder(const VideoTrackDecoder&) = delete;
    VideoTrackDecoder& operator=(const VideoTrackDecoder&) = delete;

    // The next frame in presentation order, or null at the end. Frames the decoder refuses
    // are skipped. Throws MediaError when the file cannot be read on.
    std::shared_ptr<SampleBuffer> next();

    // The stream's time base as a timescale the times of next() use.
    int timescale() const { return m_timescale; }

private:
    MediaTime timeOf(std::int64_t streamTicks) const;

    ReaderSource& m_source;
    int m_streamIndex;
    AVRational m_timeBase = {1, 1};
    int m_timescale = 1;
    std::int64_t m_ticksPerUnit = 1;
    std::int64_t m_defaultDuration = 0;
    CodecContextPtr m_decoder;
    FramePtr m_frame;
    bool m_drained = false;
    int m_refusals = 0;
};

} // namespace Platform::Internal
