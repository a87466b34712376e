#include "app/vocabulary/VideoFormat.h"

namespace Ondrilet {

QString rawValue(VideoFormat format)
{
    switch (format) {
    case VideoFormat::mp4:
        return QStringLiteral("MP4");
    case VideoFormat::mov:
        return QStringLiteral("MOV");
    }
    return {};
}

std::optional<VideoFormat> videoFormatFromRawValue(const QString& raw)
{
    for (VideoFormat format : allVideoFormats())
        if (rawValue(format) == raw)
            return format;
    return std::nullopt;
}

} // namespace Ondrilet
