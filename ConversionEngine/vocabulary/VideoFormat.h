// The video containers the video engine writes, with the writer's file type for each.
// Plain value; any thread.
#pragma once

#include "platform/media/FileType.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class VideoFormat
{
    mp4,
    mov,
    m4v,
};

// "MP4", "MOV", "M4V".
QString rawValue(VideoFormat format);
std::optional<VideoFormat> videoFormatFromRawValue(const QString& raw);
// The raw value in lower case.
QString fileExtension(VideoFormat format);
// QuickTime for mov; MPEG-4 for mp4 and m4v.
platform::FileType fileType(VideoFormat format);

inline const std::array<VideoFormat, 3>& allVideoFormats()
{
    static constexpr std::array<VideoFormat, 3> cases{
        VideoFormat::mp4,
        VideoFormat::mov,
        VideoFormat::m4v,
    };
    return cases;
}

} // namespace ConversionEngine
