// SPDX-License-Identifier: GPL-3.0-or-later
// The deinterlacing the engine proposes for a stream by itself: nothing for progressive material;
// for interlaced material a filter chosen by picture height first and frame rate second, keeping
// the stream's field order. Pure; any thread.
#pragma once

#include "ConversionEngine/core/DeinterlacingMethodKind.h"
#include "ConversionEngine/core/FieldDominanceKind.h"

#include <optional>

namespace ConversionEngine {

struct AutomaticDeinterlacingChoice
{
    bool shouldDeinterlace = false;
    DeinterlacingMethodKind method = DeinterlacingMethodKind::yadif;
    std::optional<FieldDominanceKind> fieldDominance;
    bool adaptiveMode = true;

    friend bool operator==(const AutomaticDeinterlacingChoice&,
                           const AutomaticDeinterlacingChoice&) = default;
};

// Progressive: no deinterlacing, yadif, no field order. Interlaced: w3fdif from 1080 lines up,
// else bwdif above 30 frames per second, else yadif; the field order is the stream's.
AutomaticDeinterlacingChoice automaticDeinterlacing(bool isInterlaced, double height,
                                                    double framesPerSecond,
                                                    std::optional<FieldDominanceKind> dominance);

} // namespace ConversionEngine
