// SPDX-License-Identifier: GPL-3.0-or-later
// The video half of what the user picked: codec, optional size, frame rate and quality.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/VideoFrameRate.h"
#include "app/vocabulary/QualityMode.h"
#include "app/vocabulary/VideoCodec.h"
#include "app/vocabulary/VideoResolution.h"

#include <optional>

namespace Ondrilet {

struct VideoSettings
{
    VideoCodec codec = VideoCodec::h264;
    std::optional<VideoResolution> resolution; // absent: the source's size
    // The application has no frame-rate type of its own.
    ConversionEngine::VideoFrameRate frameRate = ConversionEngine::VideoFrameRate::source;
    QualityMode quality;

    friend bool operator==(const VideoSettings&, const VideoSettings&) = default;
};

} // namespace Ondrilet
