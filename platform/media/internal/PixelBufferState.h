// SPDX-License-Identifier: GPL-3.0-or-later
// The picture behind a PixelBuffer: a frame in whatever form it was made (a decoder's own, or
// BGRA), and the BGRA copy made when code asks for pixels. Media layer internals only; one
// thread at a time.
#pragma once

#include "platform/media/internal/FfmpegPointers.h"

#include <cstdint>

namespace Platform::Internal {

class PixelBufferState
{
public:
    // Takes a reference to `frame`'s data; the frame itself stays the caller's.
    explicit PixelBufferState(const AVFrame& frame);
    // Takes `frame` over.
    explicit PixelBufferState(FramePtr frame);

    // The picture as it stands; after a lock, its BGRA form.
    const AVFrame& frame() const { return *m_frame; }

    bool lock();
    void unlock() { m_locked = false; }
    std::uint8_t* bgraData() const;
    int bgraLinesize() const;

    // A black picture of `width` × `height` in `format` (full range for RGB forms). Null when
    // FFmpeg cannot make it.
    static FramePtr makeBlackFrame(int width, int height, AVPixelFormat format);

private:
    FramePtr m_frame;
    bool m_locked = false;
};

} // namespace Platform::Internal
