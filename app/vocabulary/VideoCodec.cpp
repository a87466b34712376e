#include "app/vocabulary/VideoCodec.h"

namespace Ondrilet {

QString rawValue(VideoCodec codec)
{
    switch (codec) {
    case VideoCodec::h264:
        return QStringLiteral("H.264");
    case VideoCodec::h265:
        return QStringLiteral("H.265");
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

QString caseName(VideoCodec codec)
{
    switch (codec) {
    case VideoCodec::h264:
        return QStringLiteral("h264");
    case VideoCodec::h265:
        return QStringLiteral("h265");
    case VideoCodec::prores422:
        return QStringLiteral("prores422");
    case VideoCodec::prores4444:
        return QStringLiteral("prores4444");
    }
    return {};
}

} // namespace Ondrilet
