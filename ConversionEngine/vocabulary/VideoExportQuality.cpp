#include "ConversionEngine/vocabulary/VideoExportQuality.h"

namespace ConversionEngine {

QString rawValue(VideoExportQuality quality)
{
    switch (quality) {
    case VideoExportQuality::highest:
        return QStringLiteral("Highest");
    case VideoExportQuality::high:
        return QStringLiteral("High");
    case VideoExportQuality::medium:
        return QStringLiteral("Medium");
    case VideoExportQuality::low:
        return QStringLiteral("Low");
    }
    return {};
}

std::optional<VideoExportQuality> videoExportQualityFromRawValue(const QString& raw)
{
    for (VideoExportQuality quality : allVideoExportQualities())
        if (rawValue(quality) == raw)
            return quality;
    return std::nullopt;
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
