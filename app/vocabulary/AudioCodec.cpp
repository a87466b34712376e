#include "app/vocabulary/AudioCodec.h"

namespace Ondrilet {

QString rawValue(AudioCodec codec)
{
    switch (codec) {
    case AudioCodec::aac:
        return QStringLiteral("AAC");
    case AudioCodec::alac:
        return QStringLiteral("ALAC");
    case AudioCodec::pcm:
        return QStringLiteral("PCM");
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

} // namespace Ondrilet
