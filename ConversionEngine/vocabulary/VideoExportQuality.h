// The quality names of a whole-file export, each standing for an export preset of the media
// layer. `high` stands for a fixed 1920×1080 preset on purpose. Plain value; any thread.
#pragma once

#include "platform/media/ExportPreset.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class VideoExportQuality
{
    highest,
    high,
    medium,
    low,
};

QString rawValue(VideoExportQuality quality);
std::optional<VideoExportQuality> videoExportQualityFromRawValue(const QString& raw);
platform::ExportPreset exportPreset(VideoExportQuality quality);

inline const std::array<VideoExportQuality, 4>& allVideoExportQualities()
{
    static constexpr std::array<VideoExportQuality, 4> cases{
        VideoExportQuality::highest,
        VideoExportQuality::high,
        VideoExportQuality::medium,
        VideoExportQuality::low,
    };
    return cases;
}

} // namespace ConversionEngine
