// SPDX-License-Identifier: GPL-3.0-or-later
// How sure an interlacing detection is, with the colour the front end marks it with.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class InterlacingConfidence
{
    certain,
    likely,
    uncertain,
    progressive,
};

QString rawValue(InterlacingConfidence confidence);
std::optional<InterlacingConfidence> interlacingConfidenceFromRawValue(const QString& raw);
// A colour name: "green", "yellow", "orange" or "blue".
QString color(InterlacingConfidence confidence);

// Every case in declared order, with its raw value.
inline constexpr auto interlacingConfidenceTable = enumTable<InterlacingConfidence, QStringView>({
    {InterlacingConfidence::certain, u"Certain"},
    {InterlacingConfidence::likely, u"Likely"},
    {InterlacingConfidence::uncertain, u"Uncertain"},
    {InterlacingConfidence::progressive, u"Progressive"},
});
static_assert(interlacingConfidenceTable.hasDistinctCases());

inline const auto& allInterlacingConfidences()
{
    return interlacingConfidenceTable.allCases();
}

} // namespace ConversionEngine
