// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/VideoExportQuality.h"

namespace ConversionEngine {

QString rawValue(VideoExportQuality quality)
{
    return videoExportQualityTable.rawValue(quality);
}

std::optional<VideoExportQuality> videoExportQualityFromRawValue(const QString& raw)
{
    return videoExportQualityTable.fromRawValue(raw);
}

Platform::ExportPreset exportPreset(VideoExportQuality quality)
{
    switch (quality) {
    case VideoExportQuality::highest:
        return Platform::ExportPreset::highestQuality;
    case VideoExportQuality::high:
        return Platform::ExportPreset::preset1920x1080;
    case VideoExportQuality::medium:
        return Platform::ExportPreset::mediumQuality;
    case VideoExportQuality::low:
        return Platform::ExportPreset::lowQuality;
    }
    return Platform::ExportPreset::highestQuality;
}

} // namespace ConversionEngine
