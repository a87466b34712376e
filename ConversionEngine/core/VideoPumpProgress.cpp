// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/VideoPumpProgress.h"

#include <algorithm>

namespace ConversionEngine {

namespace {

constexpr double pumpShare = 0.65;
constexpr double pumpStart = 0.25;
constexpr double pumpEnd = 0.9;

} // namespace

std::optional<double> VideoPumpProgress::fraction(std::int64_t outputFrameCount, double pts,
                                                  double durationSeconds)
{
    if (outputFrameCount % framesPerReport != 0 || !(durationSeconds > 0.0))
        return std::nullopt;
    return std::min(pts / durationSeconds * pumpShare + pumpStart, pumpEnd);
}

} // namespace ConversionEngine
