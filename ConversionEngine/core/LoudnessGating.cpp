// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/LoudnessGating.h"

#include "ConversionEngine/core/LevelConstants.h"

#include <algorithm>
#include <cmath>

namespace ConversionEngine {

std::size_t LoudnessGating::blockLengthFrames(double sampleRate)
{
    const double frames = std::round(0.01 * sampleRate);
    // Also catches a NaN or negative rate, which would otherwise give no blocks at all.
    if (!(frames >= 1.0))
        return 1;
    return static_cast<std::size_t>(frames);
}

double LoudnessGating::loudnessOf(double meanPower)
{
    return 10.0 * std::log10(meanPower + LevelConstants::epsilonWide) - 0.691;
}

std::vector<double> LoudnessGating::windowPowers(std::span<const double> blockPowers)
{
    const std::size_t n = blockPowers.size();
    std::vector<double> windows;
    if (n < blocksPerWindow)
        return windows;

    std::vector<double> prefix(n + 1);
    prefix[0] = 0.0;
    for (std::size_t i = 0; i < n; ++i)
        prefix[i + 1] = prefix[i] + blockPowers[i];

    windows.reserve((n - blocksPerWindow) / blocksPerStep + 1);
    for (std::size_t start = 0; start + blocksPerWindow <= n; start += blocksPerStep)
        windows.push_back((prefix[start + blocksPerWindow] - prefix[start]) /
                          static_cast<double>(blocksPerWindow));
    return windows;
}

LoudnessResult LoudnessGating::evaluate(std::span<const double> blockPowers, float linearPeak)
{
    const std::vector<double> windows = windowPowers(blockPowers);

    double meanPower = LevelConstants::epsilonWide;
    if (!windows.empty()) {
        double sum = 0.0;
        for (const double w : windows)
            sum += w;
        meanPower = sum / static_cast<double>(windows.size());
    }

    LoudnessResult result;
    result.ungatedLUFS = static_cast<float>(loudnessOf(meanPower));

    // The gate starts from the ungated figure as reported, not from its wider value.
    const double gate =
        std::max(static_cast<double>(result.ungatedLUFS) - relativeGateLU, absoluteFloorLUFS);

    double keptSum = 0.0;
    std::size_t keptCount = 0;
    for (const double w : windows) {
        if (loudnessOf(w) > gate) {
            keptSum += w;
            ++keptCount;
        }
    }
    const double gatedPower =
        keptCount > 0 ? keptSum / static_cast<double>(keptCount) : std::pow(10.0, gate / 10.0);

    result.integratedLUFS = static_cast<float>(loudnessOf(gatedPower));
    result.effectiveGateLUFS = static_cast<float>(gate);
    result.truePeakDBTP = 20.0f * std::log10(linearPeak + LevelConstants::epsilon);
    return result;
}

} // namespace ConversionEngine
