#include "ConversionEngine/vocabulary/AudioCodec.h"

namespace ConversionEngine {

QString rawValue(AudioCodec codec)
{
    switch (codec) {
    case AudioCodec::aac:
        return QStringLiteral("aac");
    case AudioCodec::alac:
        return QStringLiteral("alac");
    case AudioCodec::pcm:
        return QStringLiteral("pcm");
    case AudioCodec::heAac:
        return QStringLiteral("HE-AAC");
    case AudioCodec::heAacV2:
        return QStringLiteral("HE-AAC v2");
    }
    return {};
}

std::optional<AudioCodec> audioCodecFromRawValue(const QString& raw)
{
    for (AudioCodec codec : allAudioCodecs())
        if (rawValue(codec) == raw)
            return codec;
    return std::nullopt;
}

} // namespace ConversionEngine
