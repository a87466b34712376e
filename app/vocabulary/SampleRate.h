// The output sample rates the user can pick; the raw value is also the label.
// Plain value; any thread.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace Ondrilet {

enum class SampleRate
{
    rate44100,
    rate48000,
    rate96000,
};

// "44.1 kHz", "48 kHz", "96 kHz".
QString rawValue(SampleRate rate);
std::optional<SampleRate> sampleRateFromRawValue(const QString& raw);

inline const std::array<SampleRate, 3>& allSampleRates()
{
    static constexpr std::array<SampleRate, 3> cases{
        SampleRate::rate44100,
        SampleRate::rate48000,
        SampleRate::rate96000,
    };
    return cases;
}

} // namespace Ondrilet
