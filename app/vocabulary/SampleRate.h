// SPDX-License-Identifier: GPL-3.0-or-later
// The output sample rates the user can pick; the raw value is also the label.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

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

// Every case in declared order, with its raw value.
inline constexpr auto sampleRateTable = ConversionEngine::enumTable<SampleRate, QStringView>({
    {SampleRate::rate44100, u"44.1 kHz"},
    {SampleRate::rate48000, u"48 kHz"},
    {SampleRate::rate96000, u"96 kHz"},
});
static_assert(sampleRateTable.hasDistinctCases());

inline const auto& allSampleRates()
{
    return sampleRateTable.allCases();
}

} // namespace Ondrilet
