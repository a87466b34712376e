// The output sample rates of the audio engine; the raw value is the rate in hertz as a
// single-precision float. Plain value; any thread.
#pragma once

#include <array>
#include <optional>

namespace ConversionEngine {

enum class SampleRate
{
    rate44100,
    rate48000,
    rate96000,
};

// The rate in hertz: 44100, 48000 or 96000.
float rawValue(SampleRate rate);
// Only a value exactly equal to one of the three rates finds a case.
std::optional<SampleRate> sampleRateFromRawValue(float hertz);

inline const std::array<SampleRate, 3>& allSampleRates()
{
    static constexpr std::array<SampleRate, 3> cases{
        SampleRate::rate44100,
        SampleRate::rate48000,
        SampleRate::rate96000,
    };
    return cases;
}

} // namespace ConversionEngine
