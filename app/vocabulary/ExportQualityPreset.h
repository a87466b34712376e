// The export quality a preset names. It stays in the application: the video engine is always
// asked for its highest export quality. Plain value; any thread.
#pragma once

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

inline const std::array<ExportQualityPreset, 4>& allExportQualityPresets()
{
    static constexpr std::array<ExportQualityPreset, 4> cases{
        ExportQualityPreset::highest,
        ExportQualityPreset::high,
        ExportQualityPreset::medium,
        ExportQualityPreset::low,
    };
    return cases;
}

} // namespace Ondrilet
