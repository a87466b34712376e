// SPDX-License-Identifier: GPL-3.0-or-later
// Whether a video conversion keeps interlaced material as it is or asks for progressive
// output. Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class InterlacingHandlingMode
{
    keepOriginal,
    makeProgressive,
};

QString rawValue(InterlacingHandlingMode mode);
std::optional<InterlacingHandlingMode> interlacingHandlingModeFromRawValue(const QString& raw);
// The explanation shown beside the choice.
QString description(InterlacingHandlingMode mode);

// Every case in declared order, with its raw value.
inline constexpr auto interlacingHandlingModeTable =
    enumTable<InterlacingHandlingMode, QStringView>({
        {InterlacingHandlingMode::keepOriginal, u"Keep Original"},
        {InterlacingHandlingMode::makeProgressive, u"Make Progressive"},
    });
static_assert(interlacingHandlingModeTable.hasDistinctCases());

inline const auto& allInterlacingHandlingModes()
{
    return interlacingHandlingModeTable.allCases();
}

} // namespace ConversionEngine
