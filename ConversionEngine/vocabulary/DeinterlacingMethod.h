// SPDX-License-Identifier: GPL-3.0-or-later
// The deinterlacing filters a user can name, with their texts and their speed and quality
// ratings. Nothing carries a filter out; only the choice and its texts exist. Any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class DeinterlacingMethod
{
    yadif,
    bwdif,
    w3fdif,
    linearBlend,
    bob,
};

QString rawValue(DeinterlacingMethod method);
std::optional<DeinterlacingMethod> deinterlacingMethodFromRawValue(const QString& raw);

// Ratings from 1 (worst) to 5 (best).
int speedRating(DeinterlacingMethod method);
int qualityRating(DeinterlacingMethod method);

// "YADIF - Speed: 2/5 - Quality: 4/5": the short name with the two ratings.
QString performanceText(DeinterlacingMethod method);
QString description(DeinterlacingMethod method);
QString recommendedFor(DeinterlacingMethod method);

// Every case in declared order, with its raw value.
inline constexpr auto deinterlacingMethodTable = enumTable<DeinterlacingMethod, QStringView>({
    {DeinterlacingMethod::yadif, u"YADIF (Yet Another Deinterlacing Filter)"},
    {DeinterlacingMethod::bwdif, u"BWDIF (Bob Weaver Deinterlacing Filter)"},
    {DeinterlacingMethod::w3fdif, u"W3FDIF (Weighted 3-Field Deinterlacing)"},
    {DeinterlacingMethod::linearBlend, u"Linear Blend"},
    {DeinterlacingMethod::bob, u"Bob (Simple Field Doubling)"},
});
static_assert(deinterlacingMethodTable.hasDistinctCases());

inline const auto& allDeinterlacingMethods()
{
    return deinterlacingMethodTable.allCases();
}

} // namespace ConversionEngine
