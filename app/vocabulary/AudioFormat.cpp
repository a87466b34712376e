#include "app/vocabulary/AudioFormat.h"

namespace Ondrilet {

QString rawValue(AudioFormat format)
{
    switch (format) {
    case AudioFormat::aiff:
        return QStringLiteral("aiff");
    case AudioFormat::wav:
        return QStringLiteral("wav");
    case AudioFormat::m4a:
        return QStringLiteral("m4a");
    case AudioFormat::caf:
        return QStringLiteral("caf");
    }
    return {};
}

std::optional<AudioFormat> audioFormatFromRawValue(const QString& raw)
{
    for (AudioFormat format : allAudioFormats())
        if (rawValue(format) == raw)
            return format;
    return std::nullopt;
}

} // namespace Ondrilet
