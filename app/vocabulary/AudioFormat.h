// The audio output formats the user can pick; the raw value is also the file extension.
// Plain value; any thread.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace Ondrilet {

enum class AudioFormat
{
    aiff,
    wav,
    m4a,
    caf,
};

// "aiff", "wav", "m4a", "caf".
QString rawValue(AudioFormat format);
std::optional<AudioFormat> audioFormatFromRawValue(const QString& raw);

inline const std::array<AudioFormat, 4>& allAudioFormats()
{
    static constexpr std::array<AudioFormat, 4> cases{
        AudioFormat::aiff,
        AudioFormat::wav,
        AudioFormat::m4a,
        AudioFormat::caf,
    };
    return cases;
}

} // namespace Ondrilet
