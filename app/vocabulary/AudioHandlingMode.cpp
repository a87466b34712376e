#include "app/vocabulary/AudioHandlingMode.h"

namespace Ondrilet {

QString rawValue(AudioHandlingMode mode)
{
    switch (mode) {
    case AudioHandlingMode::passthrough:
        return QStringLiteral("passthrough");
    case AudioHandlingMode::reencode:
        return QStringLiteral("reencode");
    }
    return {};
}

std::optional<AudioHandlingMode> audioHandlingModeFromRawValue(const QString& raw)
{
    for (AudioHandlingMode mode : allAudioHandlingModes())
        if (rawValue(mode) == raw)
            return mode;
    return std::nullopt;
}

} // namespace Ondrilet
