#include "ConversionEngine/vocabulary/VideoFormat.h"

namespace ConversionEngine {

QString rawValue(VideoFormat format)
{
    switch (format) {
    case VideoFormat::mp4:
        return QStringLiteral("MP4");
    case VideoFormat::mov:
        return QStringLiteral("MOV");
    case VideoFormat::m4v:
        return QStringLiteral("M4V");
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

QString fileExtension(VideoFormat format)
{
    return rawValue(format).toLower();
}

platform::FileType fileType(VideoFormat format)
{
    if (format == VideoFormat::mov)
        return platform::FileType::quickTimeMovie;
    return platform::FileType::mpeg4;
}

} // namespace ConversionEngine
