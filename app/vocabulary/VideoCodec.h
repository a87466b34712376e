// The video codecs the user can pick; the raw value is also the label and the file-name token.
// Plain value; any thread.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace Ondrilet {

enum class VideoCodec
{
    h264,
    h265,
    prores422,
    prores4444,
};

// "H.264", "H.265", "ProRes 422", "ProRes 4444".
QString rawValue(VideoCodec codec);
std::optional<VideoCodec> videoCodecFromRawValue(const QString& raw);
// The case's own name ("h265"), as console lines print it.
QString caseName(VideoCodec codec);

inline const std::array<VideoCodec, 4>& allVideoCodecs()
{
    static constexpr std::array<VideoCodec, 4> cases{
        VideoCodec::h264,
        VideoCodec::h265,
        VideoCodec::prores422,
        VideoCodec::prores4444,
    };
    return cases;
}

} // namespace Ondrilet
