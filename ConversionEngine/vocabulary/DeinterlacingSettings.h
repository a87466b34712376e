// What a video conversion is asked to do about interlacing for one file. The settings travel
// to the video engine, which takes no action on them. Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/DeinterlacingMethod.h"
#include "ConversionEngine/vocabulary/FieldDominance.h"

#include <optional>

namespace ConversionEngine {

struct DeinterlacingSettings
{
    bool shouldDeinterlace = false;
    DeinterlacingMethod method = DeinterlacingMethod::yadif;
    std::optional<FieldDominance> fieldDominance;
    bool adaptiveMode = true;

    friend bool operator==(const DeinterlacingSettings&, const DeinterlacingSettings&) = default;
};

} // namespace ConversionEngine
