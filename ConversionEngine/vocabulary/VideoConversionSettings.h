// SPDX-License-Identifier: GPL-3.0-or-later
// What the video engine is asked to write: container, codec, size and how to reach it, frame
// rate, quality and export quality. Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/QualityMode.h"
#include "ConversionEngine/vocabulary/ResolutionMode.h"
#include "ConversionEngine/vocabulary/VideoCodec.h"
#include "ConversionEngine/vocabulary/VideoExportQuality.h"
#include "ConversionEngine/vocabulary/VideoFormat.h"
#include "ConversionEngine/vocabulary/VideoFrameRate.h"
#include "ConversionEngine/vocabulary/VideoResolution.h"

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
