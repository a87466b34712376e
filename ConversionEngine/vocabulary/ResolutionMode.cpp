#include "ConversionEngine/vocabulary/ResolutionMode.h"

namespace ConversionEngine {

QString rawValue(ResolutionMode mode)
{
    switch (mode) {
    case ResolutionMode::fit:
        return QStringLiteral("Fit");
    case ResolutionMode::crop:
        return QStringLiteral("Crop");
    }
    return {};
}

std::optional<ResolutionMode> resolutionModeFromRawValue(const QString& raw)
{
    for (ResolutionMode mode : allResolutionModes())
        if (rawValue(mode) == raw)
            return mode;
    return std::nullopt;
}

} // namespace ConversionEngine
