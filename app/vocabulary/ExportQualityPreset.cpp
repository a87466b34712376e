#include "app/vocabulary/ExportQualityPreset.h"

namespace Ondrilet {

QString rawValue(ExportQualityPreset preset)
{
    switch (preset) {
    case ExportQualityPreset::highest:
        return QStringLiteral("Highest");
    case ExportQualityPreset::high:
        return QStringLiteral("High");
    case ExportQualityPreset::medium:
        return QStringLiteral("Medium");
    case ExportQualityPreset::low:
        return QStringLiteral("Low");
    }
    return {};
}

std::optional<ExportQualityPreset> exportQualityPresetFromRawValue(const QString& raw)
{
    for (ExportQualityPreset preset : allExportQualityPresets())
        if (rawValue(preset) == raw)
            return preset;
    return std::nullopt;
}

} // namespace Ondrilet
