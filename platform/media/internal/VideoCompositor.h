// SPDX-License-Identifier: GPL-3.0-or-later
// Draws the pictures of a composition output: decodes the drawn track, and for each time on
// the frameDuration grid takes the latest source frame at or before it, drawn into the render
// area with the layer's transform. A repeated source frame is drawn once. Called under the
// reader's lock.
#pragma once

#include "platform/media/AssetTrack.h"
#include "platform/media/SampleBuffer.h"
#include "platform/media/VideoComposition.h"
#include "platform/media/internal/FfmpegPointers.h"
#include "platform/media/internal/VideoTrackDecoder.h"

#include <memory>
#include <vector>

namespace Platform::Internal {

class ReaderSource;

class VideoCompositor
{
public:
    // The track the composition draws: that of the first layer instruction when it is among
    // `tracks`, else the first of `tracks`.
    static const AssetTrack& drawnTrack(const std::vector<AssetTrack>& tracks,
                                        const VideoComposition& composition);

    // Throws MediaError as the decoder does.
    VideoCompositor(ReaderSource& source, const std::vector<AssetTrack>& tracks,
                    const VideoComposition& composition);
    ~VideoCompositor();

    // The next picture on the grid, or null past the end.
    std::shared_ptr<SampleBuffer> next();

private:
    bool isAtOrBefore(MediaTime time, std::int64_t gridIndex) const;
    void advanceSourceTo(std::int64_t gridIndex);
    std::shared_ptr<PixelBuffer> draw(const PixelBuffer& source);
    std::shared_ptr<PixelBuffer> drawBlack();
    std::shared_ptr<PixelBuffer> drawScaled(const AVFrame& frame, int width, int height);
    std::shared_ptr<PixelBuffer> drawMapped(const AVFrame& frame);

    VideoTrackDecoder m_decoder;
    int m_renderWidth = 0;
    int m_renderHeight = 0;
    MediaTime m_frameDuration;
    // Grid times below this count (k · frameDuration < end).
    double m_endSeconds = 0.0;
    Size m_naturalSize;
    AffineTransform m_transform;
    std::int64_t m_gridIndex = 0;
    std::shared_ptr<SampleBuffer> m_current;
    std::shared_ptr<SampleBuffer> m_upcoming;
    std::shared_ptr<PixelBuffer> m_drawn;
    bool m_sourceEnded = false;
    SwsContext* m_scaler = nullptr;
};

} // namespace Platform::Internal
