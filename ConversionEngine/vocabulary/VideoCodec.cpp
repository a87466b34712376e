#include "ConversionEngine/vocabulary/VideoCodec.h"

namespace ConversionEngine {

QString rawValue(VideoCodec codec)
{
    switch (codec) {
    case VideoCodec::h264:
        return QStringLiteral("H.264");
    case VideoCodec::hevc:
        return QStringLiteral("HEVC");
    case VideoCodec::prores422:
        return QStringLiteral("ProRes 422");
    case VideoCodec::prores4444:
        return QStringLiteral("ProRes 4444");
    }
    return {};
}

std::optional<VideoCodec> videoCodecFromRawValue(const QString& raw)
{
    for (VideoCodec codec : allVideoCodecs())
        if (rawValue(codec) == raw)
            return codec;
    return std::nullopt;
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
