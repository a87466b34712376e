// SPDX-License-Identifier: GPL-3.0-or-later
// The kinds of video quality the picker offers: only constant quality. Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace Ondrilet {

enum class QualityModeType
{
    constant,
};

// "Constant Quality (CRF)".
QString rawValue(QualityModeType type);
std::optional<QualityModeType> qualityModeTypeFromRawValue(const QString& raw);

// Every case in declared order, with its raw value.
inline constexpr auto qualityModeTypeTable =
    ConversionEngine::enumTable<QualityModeType, QStringView>({
        {QualityModeType::constant, u"Constant Quality (CRF)"},
    });
static_assert(qualityModeTypeTable.hasDistinctCases());

inline const auto& allQualityModeTypes()
{
    return qualityModeTypeTable.allCases();
}

} // namespace Ondrilet
