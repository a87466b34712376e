// SPDX-License-Identifier: GPL-3.0-or-later
// The export quality a preset names. It stays in the application: the video engine is always
// asked for its highest export quality. Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace Ondrilet {

enum class ExportQualityPreset
{
    highest,
    high,
    medium,
    low,
};

// "Highest", "High", "Medium", "Low".
QString rawValue(ExportQualityPreset preset);
std::optional<ExportQualityPreset> exportQualityPresetFromRawValue(const QString& raw);

// Every case in declared order, with its raw value.
inline constexpr auto exportQualityPresetTable =
    ConversionEngine::enumTable<ExportQualityPreset, QStringView>({
        {ExportQualityPreset::highest, u"Highest"},
        {ExportQualityPreset::high, u"High"},
        {ExportQualityPreset::medium, u"Medium"},
        {ExportQualityPreset::low, u"Low"},
    });
static_assert(exportQualityPresetTable.hasDistinctCases());

inline const auto& allExportQualityPresets()
{
    return exportQualityPresetTable.allCases();
}

} // namespace Ondrilet
