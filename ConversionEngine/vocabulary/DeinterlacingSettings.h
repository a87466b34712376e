// SPDX-License-Identifier: GPL-3.0-or-later
// What a video conversion is asked to do about interlacing for one file. The settings travel
// to the video engine, which takes no action on them. Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/DeinterlacingMethod.h"
#include "ConversionEngine/vocabulary/FieldDominance.h"

#include <optional>

namespace ConversionEngine {

struct VideoStream;

struct DeinterlacingSettings
{
    bool shouldDeinterlace = false;
    DeinterlacingMethod method = DeinterlacingMethod::yadif;
    std::optional<FieldDominance> fieldDominance;
    bool adaptiveMode = true;

    // What the engine proposes for a stream by itself: nothing for a progressive one; for an
    // interlaced one a filter by height first (w3fdif from 1080 lines), then by rate (bwdif
    // above 30 fps), else yadif, with the stream's field order. Defined with the inspection.
    static DeinterlacingSettings automatic(const VideoStream& stream);

    friend bool operator==(const DeinterlacingSettings&, const DeinterlacingSettings&) = default;
};

} // namespace ConversionEngine
