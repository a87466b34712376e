// The video codecs the video engine encodes to, with the media layer's codec for each.
// Plain value; any thread.
#pragma once

#include "platform/media/VideoCodecType.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class VideoCodec
{
    h264,
    hevc,
    prores422,
    prores4444,
};

// "H.264", "HEVC", "ProRes 422", "ProRes 4444".
QString rawValue(VideoCodec codec);
std::optional<VideoCodec> videoCodecFromRawValue(const QString& raw);
platform::VideoCodecType codecType(VideoCodec codec);
// True for ProRes 4444 only, decided by the raw value.
bool supportsAlpha(VideoCodec codec);

inline const std::array<VideoCodec, 4>& allVideoCodecs()
{
    static constexpr std::array<VideoCodec, 4> cases{
        VideoCodec::h264,
        VideoCodec::hevc,
        VideoCodec::prores422,
        VideoCodec::prores4444,
    };
    return cases;
}

} // namespace ConversionEngine
