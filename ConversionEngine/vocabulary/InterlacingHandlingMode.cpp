#include "ConversionEngine/vocabulary/InterlacingHandlingMode.h"

namespace ConversionEngine {

QString rawValue(InterlacingHandlingMode mode)
{
    switch (mode) {
    case InterlacingHandlingMode::keepOriginal:
        return QStringLiteral("Keep Original");
    case InterlacingHandlingMode::makeProgressive:
        return QStringLiteral("Make Progressive");
    }
    return {};
}

std::optional<InterlacingHandlingMode> interlacingHandlingModeFromRawValue(const QString& raw)
{
    for (InterlacingHandlingMode mode : allInterlacingHandlingModes())
        if (rawValue(mode) == raw)
            return mode;
    return std::nullopt;
}

QString description(InterlacingHandlingMode mode)
{
    switch (mode) {
    case InterlacingHandlingMode::keepOriginal:
        return QStringLiteral("Preserve the original interlaced format when the output codec "
                              "supports it (MOV, MXF, AVI)");
    case InterlacingHandlingMode::makeProgressive:
        return QStringLiteral("Convert interlaced content to progressive using deinterlacing");
    }
    return {};
}

} // namespace ConversionEngine
