// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/AutomaticDeinterlacing.h"

namespace ConversionEngine {

AutomaticDeinterlacingChoice automaticDeinterlacing(bool isInterlaced, double height,
                                                    double framesPerSecond,
                                                    std::optional<FieldDominanceKind> dominance)
{
    if (!isInterlaced)
        return AutomaticDeinterlacingChoice{};
    AutomaticDeinterlacingChoice choice;
    choice.shouldDeinterlace = true;
    choice.fieldDominance = dominance;
    // Height is asked first, so a 1080-line stream gets the slow filter whatever its rate.
    if (height >= 1080.0)
        choice.method = DeinterlacingMethodKind::w3fdif;
    else if (framesPerSecond > 30.0)
        choice.method = DeinterlacingMethodKind::bwdif;
    else
        choice.method = DeinterlacingMethodKind::yadif;
    return choice;
}

} // namespace ConversionEngine
