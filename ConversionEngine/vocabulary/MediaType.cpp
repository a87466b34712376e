#include "ConversionEngine/vocabulary/MediaType.h"

namespace ConversionEngine {

QString rawValue(MediaType type)
{
    switch (type) {
    case MediaType::video:
        return QStringLiteral("Video");
    case MediaType::audio:
        return QStringLiteral("Audio");
    case MediaType::unknown:
        return QStringLiteral("Unknown");
    }
    return {};
}

std::optional<MediaType> mediaTypeFromRawValue(const QString& raw)
{
    for (MediaType type : allMediaTypes())
        if (rawValue(type) == raw)
            return type;
    return std::nullopt;
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
