// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/ResolutionMode.h"

namespace ConversionEngine {

QString rawValue(ResolutionMode mode)
{
    return resolutionModeTable.rawValue(mode);
}

std::optional<ResolutionMode> resolutionModeFromRawValue(const QString& raw)
{
    return resolutionModeTable.fromRawValue(raw);
}

} // namespace ConversionEngine
