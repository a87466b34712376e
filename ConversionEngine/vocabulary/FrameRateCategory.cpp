#include "ConversionEngine/vocabulary/FrameRateCategory.h"

namespace ConversionEngine {

QString rawValue(FrameRateCategory category)
{
    switch (category) {
    case FrameRateCategory::source:
        return QStringLiteral("Source");
    case FrameRateCategory::cinema:
        return QStringLiteral("Cinema");
    case FrameRateCategory::pal:
        return QStringLiteral("PAL");
    case FrameRateCategory::ntsc:
        return QStringLiteral("NTSC");
    }
    return {};
}

std::optional<FrameRateCategory> frameRateCategoryFromRawValue(const QString& raw)
{
    for (FrameRateCategory category : allFrameRateCategories())
        if (rawValue(category) == raw)
            return category;
    return std::nullopt;
}

} // namespace ConversionEngine
