// SPDX-License-Identifier: GPL-3.0-or-later
// The family a frame rate belongs to (cinema, PAL, NTSC, or following the source).
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

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

// Every case in declared order, with its raw value.
inline constexpr auto frameRateCategoryTable = enumTable<FrameRateCategory, QStringView>({
    {FrameRateCategory::source, u"Source"},
    {FrameRateCategory::cinema, u"Cinema"},
    {FrameRateCategory::pal, u"PAL"},
    {FrameRateCategory::ntsc, u"NTSC"},
});
static_assert(frameRateCategoryTable.hasDistinctCases());

inline const auto& allFrameRateCategories()
{
    return frameRateCategoryTable.allCases();
}

} // namespace ConversionEngine
