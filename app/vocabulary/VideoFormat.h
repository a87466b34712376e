// The video output formats the user can pick; raw values are upper case, unlike the audio
// formats'. Plain value; any thread.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace Ondrilet {

enum class VideoFormat
{
    mp4,
    mov,
};

// "MP4", "MOV".
QString rawValue(VideoFormat format);
std::optional<VideoFormat> videoFormatFromRawValue(const QString& raw);

inline const std::array<VideoFormat, 2>& allVideoFormats()
{
    static constexpr std::array<VideoFormat, 2> cases{VideoFormat::mp4, VideoFormat::mov};
    return cases;
}

} // namespace Ondrilet
