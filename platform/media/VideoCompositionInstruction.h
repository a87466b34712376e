// SPDX-License-Identifier: GPL-3.0-or-later
// One stretch of a video composition and the layers drawn during it, first layer on top. A plain
// value: any thread.
#pragma once

#include "platform/media/MediaTimeRange.h"
#include "platform/media/VideoCompositionLayerInstruction.h"

#include <vector>

namespace Platform {

struct VideoCompositionInstruction
{
    MediaTimeRange timeRange;
    std::vector<VideoCompositionLayerInstruction> layerInstructions;
};

} // namespace Platform
