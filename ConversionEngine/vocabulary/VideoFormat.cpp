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

platform::FileType fileType(VideoFormat format)
{
    if (format == VideoFormat::mov)
        return platform::FileType::quickTimeMovie;
    return platform::FileType::mpeg4;
}

} // namespace ConversionEngine
