// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/VideoFormat.h"

namespace ConversionEngine {

QString rawValue(VideoFormat format)
{
    return videoFormatTable.rawValue(format);
}

std::optional<VideoFormat> videoFormatFromRawValue(const QString& raw)
{
    return videoFormatTable.fromRawValue(raw);
}

QString fileExtension(VideoFormat format)
{
    return rawValue(format).toLower();
}

Platform::FileType fileType(VideoFormat format)
{
    if (format == VideoFormat::mov)
        return Platform::FileType::quickTimeMovie;
    return Platform::FileType::mpeg4;
}

} // namespace ConversionEngine
