// SPDX-License-Identifier: GPL-3.0-or-later
// How a composition output draws its pictures: the size of the render area, the time between
// two output frames, and the instructions. A plain value: any thread.
#pragma once

#include "platform/media/MediaTime.h"
#include "platform/media/Size.h"
#include "platform/media/VideoCompositionInstruction.h"

#include <vector>

namespace Platform {

struct VideoComposition
{
    // Whole pixels; rounded down to whole numbers when drawn.
    Size renderSize;
    // Must be valid and positive, e.g. MediaTime::make(1001, 30000).
    MediaTime frameDuration = MediaTime::invalid();
    // This layer draws the first layer of the first instruction; further layers and
    // instructions are not drawn.
    std::vector<VideoCompositionInstruction> instructions;
};

} // namespace Platform
