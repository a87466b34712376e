// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/VideoCodec.h"

namespace Ondrilet {

QString rawValue(VideoCodec codec)
{
    return videoCodecTable.rawValue(codec);
}

std::optional<VideoCodec> videoCodecFromRawValue(const QString& raw)
{
    return videoCodecTable.fromRawValue(raw);
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
