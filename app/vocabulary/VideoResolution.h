// The fixed output sizes the user can pick; the raw value is also the label. No value at all
// (an empty optional) means the source's size. Plain value; any thread.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace Ondrilet {

enum class VideoResolution
{
    p720,
    p1080,
    p2160,
};

// "720p", "1080p", "4K".
QString rawValue(VideoResolution resolution);
std::optional<VideoResolution> videoResolutionFromRawValue(const QString& raw);
// The label, or "nil" for no resolution, as console lines print it.
QString labelOrNil(const std::optional<VideoResolution>& resolution);

inline const std::array<VideoResolution, 3>& allVideoResolutions()
{
    static constexpr std::array<VideoResolution, 3> cases{
        VideoResolution::p720,
        VideoResolution::p1080,
        VideoResolution::p2160,
    };
    return cases;
}

} // namespace Ondrilet
