#include "app/vocabulary/AudioBitrate.h"

namespace Ondrilet {

std::optional<AudioBitrate> audioBitrateFromRawValue(int kilobitsPerSecond)
{
    for (AudioBitrate bitrate : allAudioBitrates())
        if (rawValue(bitrate) == kilobitsPerSecond)
            return bitrate;
    return std::nullopt;
}

} // namespace Ondrilet
