// The family a frame rate belongs to (cinema, PAL, NTSC, or following the source).
// Plain value; any thread.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class FrameRateCategory
{
    source,
    cinema,
    pal,
    ntsc,
};

QString rawValue(FrameRateCategory category);
std::optional<FrameRateCategory> frameRateCategoryFromRawValue(const QString& raw);

inline const std::array<FrameRateCategory, 4>& allFrameRateCategories()
{
    static constexpr std::array<FrameRateCategory, 4> cases{
        FrameRateCategory::source,
        FrameRateCategory::cinema,
        FrameRateCategory::pal,
        FrameRateCategory::ntsc,
    };
    return cases;
}

} // namespace ConversionEngine
