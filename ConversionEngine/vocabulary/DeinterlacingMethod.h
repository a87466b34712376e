// The deinterlacing filters a user can name, with their texts and their speed and quality
// ratings. Nothing carries a filter out; only the choice and its texts exist. Any thread.
#pragma once

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

inline const std::array<DeinterlacingMethod, 5>& allDeinterlacingMethods()
{
    static constexpr std::array<DeinterlacingMethod, 5> cases{
        DeinterlacingMethod::yadif,       DeinterlacingMethod::bwdif, DeinterlacingMethod::w3fdif,
        DeinterlacingMethod::linearBlend, DeinterlacingMethod::bob,
    };
    return cases;
}

} // namespace ConversionEngine
