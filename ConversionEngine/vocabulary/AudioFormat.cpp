#include "ConversionEngine/vocabulary/AudioFormat.h"

namespace ConversionEngine {

QString rawValue(AudioFormat format)
{
    return audioFormatTable.rawValue(format);
}

std::optional<AudioFormat> audioFormatFromRawValue(const QString& raw)
{
    return audioFormatTable.fromRawValue(raw);
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
