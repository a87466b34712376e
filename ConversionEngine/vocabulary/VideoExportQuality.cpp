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

platform::ExportPreset exportPreset(VideoExportQuality quality)
{
    switch (quality) {
    case VideoExportQuality::highest:
        return platform::ExportPreset::highestQuality;
    case VideoExportQuality::high:
        return platform::ExportPreset::preset1920x1080;
    case VideoExportQuality::medium:
        return platform::ExportPreset::mediumQuality;
    case VideoExportQuality::low:
        return platform::ExportPreset::lowQuality;
    }
    return platform::ExportPreset::highestQuality;
}

} // namespace ConversionEngine
