// The fixed output sizes of a video conversion, in pixels. Plain value; any thread.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class VideoResolution
{
    sd480,
    hd720,
    hd1080,
    uhd4k,
};

// "480p", "720p", "1080p", "4K".
QString rawValue(VideoResolution resolution);
std::optional<VideoResolution> videoResolutionFromRawValue(const QString& raw);
// Pixels.
int width(VideoResolution resolution);
int height(VideoResolution resolution);

inline const std::array<VideoResolution, 4>& allVideoResolutions()
{
    static constexpr std::array<VideoResolution, 4> cases{
        VideoResolution::sd480,
        VideoResolution::hd720,
        VideoResolution::hd1080,
        VideoResolution::uhd4k,
    };
    return cases;
}

} // namespace ConversionEngine
