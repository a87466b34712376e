#include "app/vocabulary/VideoResolution.h"

namespace Ondrilet {

QString rawValue(VideoResolution resolution)
{
    switch (resolution) {
    case VideoResolution::p720:
        return QStringLiteral("720p");
    case VideoResolution::p1080:
        return QStringLiteral("1080p");
    case VideoResolution::p2160:
        return QStringLiteral("4K");
    }
    return {};
}

std::optional<VideoResolution> videoResolutionFromRawValue(const QString& raw)
{
    for (VideoResolution resolution : allVideoResolutions())
        if (rawValue(resolution) == raw)
            return resolution;
    return std::nullopt;
}

QString labelOrNil(const std::optional<VideoResolution>& resolution)
{
    return resolution ? rawValue(*resolution) : QStringLiteral("nil");
}

} // namespace Ondrilet
