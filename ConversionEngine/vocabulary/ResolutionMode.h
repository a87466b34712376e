// SPDX-License-Identifier: GPL-3.0-or-later
// How a source is brought to a fixed output size: fitted inside it or cropped to fill it.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class ResolutionMode
{
    fit,
    crop,
};

QString rawValue(ResolutionMode mode);
std::optional<ResolutionMode> resolutionModeFromRawValue(const QString& raw);

// Every case in declared order, with its raw value.
inline constexpr auto resolutionModeTable = enumTable<ResolutionMode, QStringView>({
    {ResolutionMode::fit, u"Fit"},
    {ResolutionMode::crop, u"Crop"},
});
static_assert(resolutionModeTable.hasDistinctCases());

inline const auto& allResolutionModes()
{
    return resolutionModeTable.allCases();
}

} // namespace ConversionEngine
