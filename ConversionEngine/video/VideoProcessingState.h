// SPDX-License-Identifier: GPL-3.0-or-later
// What the video pump carries from one call to the next: the sample in hand, the picture the grid
// repeats, the grid itself and the two counters. One per conversion, touched only on the queue
// the pumps run on.
#pragma once

#include "ConversionEngine/core/FrameGrid.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace ConversionEngine {

// A video sample as the pump sees it: the reader's buffer (handed back to the writer as it is),
// its presentation time, and its picture, which the upsampling grid keeps and repeats.
struct VideoPumpSample
{
    std::shared_ptr<void> buffer;
    double presentationSeconds = 0.0;
    // Null when the sample carries no picture.
    std::shared_ptr<void> imageBuffer;
};

class VideoProcessingState
{
public:
    explicit VideoProcessingState(double frameDurationSeconds)
        : grid(frameDurationSeconds)
    {}

    // Read and not yet dealt with in full.
    std::optional<VideoPumpSample> pendingSampleBuffer;
    // Upsampling: the picture repeated until the next source frame is due.
    std::shared_ptr<void> lastPixelBuffer;
    // Upsampling: the next grid time, and whether a sample has started the grid.
    FrameGrid grid;
    // Frames handed to the writer by the pump, and samples it read; the first sample of the
    // video goes out before the pump starts and is in neither.
    std::int64_t outputFrameCount = 0;
    std::int64_t videoSampleCount = 0;
};

} // namespace ConversionEngine
