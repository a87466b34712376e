// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/VideoResolution.h"

namespace Ondrilet {

QString rawValue(VideoResolution resolution)
{
    return videoResolutionTable.rawValue(resolution);
}

std::optional<VideoResolution> videoResolutionFromRawValue(const QString& raw)
{
    return videoResolutionTable.fromRawValue(raw);
}

QString labelOrNil(const std::optional<VideoResolution>& resolution)
{
    return resolution ? rawValue(*resolution) : QStringLiteral("nil");
}

} // namespace Ondrilet
