// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/VideoFormat.h"

namespace Ondrilet {

QString rawValue(VideoFormat format)
{
    return videoFormatTable.rawValue(format);
}

std::optional<VideoFormat> videoFormatFromRawValue(const QString& raw)
{
    return videoFormatTable.fromRawValue(raw);
}

} // namespace Ondrilet
