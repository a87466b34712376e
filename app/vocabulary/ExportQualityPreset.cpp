// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/ExportQualityPreset.h"

namespace Ondrilet {

QString rawValue(ExportQualityPreset preset)
{
    return exportQualityPresetTable.rawValue(preset);
}

std::optional<ExportQualityPreset> exportQualityPresetFromRawValue(const QString& raw)
{
    return exportQualityPresetTable.fromRawValue(raw);
}

} // namespace Ondrilet
