// What the video engine is asked to write: container, codec, size and how to reach it, frame
// rate, quality and export quality. Plain value; any thread.
#pragma once

#include "ConversionEngine/QualityMode.h"
#include "ConversionEngine/ResolutionMode.h"
#include "ConversionEngine/VideoCodec.h"
#include "ConversionEngine/VideoExportQuality.h"
#include "ConversionEngine/VideoFormat.h"
#include "ConversionEngine/VideoFrameRate.h"
#include "ConversionEngine/VideoResolution.h"

#include <optional>

namespace ConversionEngine {

struct VideoConversionSettings
{
    VideoFormat outputFormat = VideoFormat::mp4;
    VideoCodec codec = VideoCodec::h264;
    std::optional<VideoResolution> resolution; // absent: the source's size
    ResolutionMode resolutionMode = ResolutionMode::fit;
    VideoFrameRate frameRate = VideoFrameRate::source;
    QualityMode qualityMode;
    VideoExportQuality exportQuality = VideoExportQuality::highest;

    friend bool operator==(const VideoConversionSettings&,
                           const VideoConversionSettings&) = default;
};

} // namespace ConversionEngine
