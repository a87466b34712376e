// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/InterlacingRules.h"

#include <array>
#include <cmath>

namespace ConversionEngine {

namespace {

InterlacingVerdict fromCount(std::int64_t count, InterlacingStep step)
{
    // Only two fields make a frame interlaced; 0, 3 or any other count reads as progressive.
    return InterlacingVerdict{count == 2, step, count, {}};
}

} // namespace

std::optional<InterlacingVerdict> interlacingFromKeys(const FieldKeys& keys)
{
    if (keys.isInterlaced)
        return InterlacingVerdict{
            *keys.isInterlaced, InterlacingStep::isInterlacedKey, *keys.isInterlaced ? 1 : 0, {}};
    if (keys.cvFieldCount)
        return fromCount(*keys.cvFieldCount, InterlacingStep::cvFieldCountKey);
    if (keys.fieldCount)
        return fromCount(*keys.fieldCount, InterlacingStep::fieldCountKey);
    return std::nullopt;
}

std::optional<std::string_view> interlacedFileNameToken(std::string_view lowerCasedName)
{
    static constexpr std::array<std::string_view, 5> tokens{"1080i", "720i", "50i", "60i",
                                                            "_interlaced"};
    for (const std::string_view token : tokens)
        if (lowerCasedName.find(token) != std::string_view::npos)
            return token;
    return std::nullopt;
}

bool isInterlacingRate(float framesPerSecond)
{
    return std::fabs(framesPerSecond - 25.0f) < 0.1f || std::fabs(framesPerSecond - 29.97f) < 0.1f;
}

InterlacingVerdict interlacingHeuristic(const std::optional<std::string>& lowerCasedFileName,
                                        float framesPerSecond, double width, double height)
{
    if (lowerCasedFileName) {
        if (const auto token = interlacedFileNameToken(*lowerCasedFileName))
            return InterlacingVerdict{true, InterlacingStep::fileName, 0, std::string(*token)};
    }
    const bool interlacingRate = isInterlacingRate(framesPerSecond);
    if (height <= 576.0 && interlacingRate)
        return InterlacingVerdict{true, InterlacingStep::standardDefinition, 0, {}};
    if (width == 720.0 && (height == 480.0 || height == 576.0) && interlacingRate)
        return InterlacingVerdict{true, InterlacingStep::digitalVideo, 0, {}};
    return InterlacingVerdict{false, InterlacingStep::noRule, 0, {}};
}

std::optional<FieldDominanceVerdict> fieldDominanceFromKeys(const FieldKeys& keys)
{
    if (keys.fieldDetail) {
        FieldDominanceKind dominance = FieldDominanceKind::progressive;
        if (*keys.fieldDetail == 1)
            dominance = FieldDominanceKind::topFieldFirst;
        else if (*keys.fieldDetail == 2)
            dominance = FieldDominanceKind::bottomFieldFirst;
        return FieldDominanceVerdict{dominance, FieldDominanceStep::fieldDetailKey};
    }
    if (keys.fieldCount) {
        std::optional<FieldDominanceKind> dominance;
        if (*keys.fieldCount == 1)
            dominance = FieldDominanceKind::progressive;
        else if (*keys.fieldCount == 2)
            dominance = FieldDominanceKind::topFieldFirst;
        return FieldDominanceVerdict{dominance, FieldDominanceStep::fieldCountKey};
    }
    return std::nullopt;
}

FieldDominanceVerdict fieldDominanceFromInterlacing(bool isInterlaced)
{
    return FieldDominanceVerdict{isInterlaced ? FieldDominanceKind::topFieldFirst
                                              : FieldDominanceKind::progressive,
                                 FieldDominanceStep::interlacingDetection};
}

} // namespace ConversionEngine
