// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/FrameRateCategory.h"

namespace ConversionEngine {

QString rawValue(FrameRateCategory category)
{
    return frameRateCategoryTable.rawValue(category);
}

std::optional<FrameRateCategory> frameRateCategoryFromRawValue(const QString& raw)
{
    return frameRateCategoryTable.fromRawValue(raw);
}

} // namespace ConversionEngine
