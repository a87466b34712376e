// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/MediaType.h"

namespace ConversionEngine {

QString rawValue(MediaType type)
{
    return mediaTypeTable.rawValue(type);
}

std::optional<MediaType> mediaTypeFromRawValue(const QString& raw)
{
    return mediaTypeTable.fromRawValue(raw);
}

QString symbolName(MediaType type)
{
    switch (type) {
    case MediaType::video:
        return QStringLiteral("video.fill");
    case MediaType::audio:
        return QStringLiteral("music.note");
    case MediaType::unknown:
        return QStringLiteral("questionmark.circle");
    }
    return {};
}

} // namespace ConversionEngine
