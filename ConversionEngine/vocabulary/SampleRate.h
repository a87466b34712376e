// SPDX-License-Identifier: GPL-3.0-or-later
// The output sample rates of the audio engine; the raw value is the rate in hertz as a
// single-precision float. Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

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

// Every case in declared order, with its raw value.
inline constexpr auto sampleRateTable = enumTable<SampleRate, float>({
    {SampleRate::rate44100, 44100.0f},
    {SampleRate::rate48000, 48000.0f},
    {SampleRate::rate96000, 96000.0f},
});
static_assert(sampleRateTable.hasDistinctCases());

inline const auto& allSampleRates()
{
    return sampleRateTable.allCases();
}

} // namespace ConversionEngine
