// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/VideoResolution.h"

namespace ConversionEngine {

QString rawValue(VideoResolution resolution)
{
    return videoResolutionTable.rawValue(resolution);
}

std::optional<VideoResolution> videoResolutionFromRawValue(const QString& raw)
{
    return videoResolutionTable.fromRawValue(raw);
}

int width(VideoResolution resolution)
{
    switch (resolution) {
    case VideoResolution::sd480:
        return 640;
    case VideoResolution::hd720:
        return 1280;
    case VideoResolution::hd1080:
        return 1920;
    case VideoResolution::uhd4k:
        return 3840;
    }
    return 0;
}

int height(VideoResolution resolution)
{
    switch (resolution) {
    case VideoResolution::sd480:
        return 480;
    case VideoResolution::hd720:
        return 720;
    case VideoResolution::hd1080:
        return 1080;
    case VideoResolution::uhd4k:
        return 2160;
    }
    return 0;
}

} // namespace ConversionEngine
