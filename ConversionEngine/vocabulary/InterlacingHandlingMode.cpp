// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/InterlacingHandlingMode.h"

namespace ConversionEngine {

QString rawValue(InterlacingHandlingMode mode)
{
    return interlacingHandlingModeTable.rawValue(mode);
}

std::optional<InterlacingHandlingMode> interlacingHandlingModeFromRawValue(const QString& raw)
{
    return interlacingHandlingModeTable.fromRawValue(raw);
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
