#include "ConversionEngine/vocabulary/VideoCodec.h"

namespace ConversionEngine {

QString rawValue(VideoCodec codec)
{
    return videoCodecTable.rawValue(codec);
}

std::optional<VideoCodec> videoCodecFromRawValue(const QString& raw)
{
    return videoCodecTable.fromRawValue(raw);
}

platform::VideoCodecType codecType(VideoCodec codec)
{
    switch (codec) {
    case VideoCodec::h264:
        return platform::VideoCodecType::h264;
    case VideoCodec::hevc:
        return platform::VideoCodecType::hevc;
    case VideoCodec::prores422:
        return platform::VideoCodecType::appleProRes422;
    case VideoCodec::prores4444:
        return platform::VideoCodecType::appleProRes4444;
    }
    return platform::VideoCodecType::h264;
}

bool supportsAlpha(VideoCodec codec)
{
    return rawValue(codec) == QStringLiteral("ProRes 4444");
}

} // namespace ConversionEngine
