// What a video conversion does with the sound: pass it through or encode it anew.
// Plain value; any thread.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace Ondrilet {

enum class AudioHandlingMode
{
    passthrough,
    reencode,
};

// "passthrough", "reencode".
QString rawValue(AudioHandlingMode mode);
std::optional<AudioHandlingMode> audioHandlingModeFromRawValue(const QString& raw);

inline const std::array<AudioHandlingMode, 2>& allAudioHandlingModes()
{
    static constexpr std::array<AudioHandlingMode, 2> cases{
        AudioHandlingMode::passthrough,
        AudioHandlingMode::reencode,
    };
    return cases;
}

} // namespace Ondrilet
