#include "ConversionEngine/vocabulary/AudioFormat.h"

namespace ConversionEngine {

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
        return QStringLiteral("CAF");
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

platform::FileType fileType(AudioFormat format)
{
    switch (format) {
    case AudioFormat::aiff:
        return platform::FileType::aiff;
    case AudioFormat::wav:
        return platform::FileType::wave;
    case AudioFormat::m4a:
        return platform::FileType::appleM4A;
    case AudioFormat::caf:
        return platform::FileType::coreAudioFormat;
    }
    return platform::FileType::aiff;
}

bool isCompressed(AudioFormat format)
{
    return rawValue(format) == QStringLiteral("m4a");
}

} // namespace ConversionEngine
