// SPDX-License-Identifier: GPL-3.0-or-later
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

Platform::VideoCodecType codecType(VideoCodec codec)
{
    switch (codec) {
    case VideoCodec::h264:
        return Platform::VideoCodecType::h264;
    case VideoCodec::hevc:
        return Platform::VideoCodecType::hevc;
    case VideoCodec::prores422:
        return Platform::VideoCodecType::appleProRes422;
    case VideoCodec::prores4444:
        return Platform::VideoCodecType::appleProRes4444;
    }
    return Platform::VideoCodecType::h264;
}

bool supportsAlpha(VideoCodec codec)
{
    return rawValue(codec) == QStringLiteral("ProRes 4444");
}

} // namespace ConversionEngine
