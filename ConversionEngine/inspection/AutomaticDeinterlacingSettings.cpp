// SPDX-License-Identifier: GPL-3.0-or-later
// DeinterlacingSettings::automatic lives beside the inspection, which owns VideoStream; the
// choice itself is core's.
#include "ConversionEngine/core/AutomaticDeinterlacing.h"
#include "ConversionEngine/inspection/InterlacingDetector.h"
#include "ConversionEngine/inspection/VideoStream.h"
#include "ConversionEngine/vocabulary/DeinterlacingSettings.h"

namespace ConversionEngine {

namespace {

DeinterlacingMethod engineMethod(DeinterlacingMethodKind kind)
{
    switch (kind) {
    case DeinterlacingMethodKind::yadif:
        return DeinterlacingMethod::yadif;
    case DeinterlacingMethodKind::bwdif:
        return DeinterlacingMethod::bwdif;
    case DeinterlacingMethodKind::w3fdif:
        return DeinterlacingMethod::w3fdif;
    case DeinterlacingMethodKind::linearBlend:
        return DeinterlacingMethod::linearBlend;
    case DeinterlacingMethodKind::bob:
        return DeinterlacingMethod::bob;
    }
    return DeinterlacingMethod::yadif;
}

} // namespace

DeinterlacingSettings DeinterlacingSettings::automatic(const VideoStream& stream)
{
    std::optional<FieldDominanceKind> dominance;
    if (stream.fieldDominance)
        dominance = InterlacingDetector::fieldDominanceKind(*stream.fieldDominance);
    const AutomaticDeinterlacingChoice choice = automaticDeinterlacing(
        stream.isInterlaced, stream.resolution.height(), stream.frameRate, dominance);
    DeinterlacingSettings settings;
    settings.shouldDeinterlace = choice.shouldDeinterlace;
    settings.method = engineMethod(choice.method);
    if (choice.fieldDominance)
        settings.fieldDominance = InterlacingDetector::fieldDominance(*choice.fieldDominance);
    settings.adaptiveMode = choice.adaptiveMode;
    return settings;
}

} // namespace ConversionEngine
