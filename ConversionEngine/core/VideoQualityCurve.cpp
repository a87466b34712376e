// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/VideoQualityCurve.h"

#include <algorithm>

namespace ConversionEngine {

namespace {

constexpr std::int64_t curveLowCrf = 5;
constexpr std::int64_t curveHighCrf = 35;
constexpr double curveTopBitsPerPixel = 0.7;
// 0.04 − 0.7 as the double it rounds to; the order of the operations below matters to the bit.
constexpr double curveSpan = 0.04 - 0.7;
constexpr double curveWidth = 30.0;
constexpr std::int64_t proResHighCrf = 51;

} // namespace

double VideoQualityCurve::bitsPerPixel(std::int64_t crf)
{
    const std::int64_t clamped = std::clamp(crf, curveLowCrf, curveHighCrf);
    return static_cast<double>(clamped - curveLowCrf) * curveSpan / curveWidth +
           curveTopBitsPerPixel;
}

std::int64_t VideoQualityCurve::bitRate(std::int64_t crf, double width, double height)
{
    return static_cast<std::int64_t>(width * height * bitsPerPixel(crf) * nominalFramesPerSecond);
}

float VideoQualityCurve::proResQuality(std::int64_t crf)
{
    const auto clamped = static_cast<float>(std::clamp<std::int64_t>(crf, 0, proResHighCrf));
    return clamped / -static_cast<float>(proResHighCrf) + 1.0f;
}

} // namespace ConversionEngine
