// The kinds of video quality the picker offers: only constant quality. Plain value; any thread.
#pragma once

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

inline const std::array<QualityModeType, 1>& allQualityModeTypes()
{
    static constexpr std::array<QualityModeType, 1> cases{QualityModeType::constant};
    return cases;
}

} // namespace Ondrilet
