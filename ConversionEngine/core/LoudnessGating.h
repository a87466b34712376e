// SPDX-License-Identifier: GPL-3.0-or-later
// Turns the mean powers of 10 ms blocks into the loudness figures: 400 ms windows every 100 ms,
// an ungated mean, one relative gate 10 LU under it (never below -70 LUFS), and the gated mean.
// All in 64-bit float until the results are rounded to 32 bits. Pure functions; any thread.
#pragma once

#include "ConversionEngine/core/LoudnessResult.h"

#include <cstddef>
#include <span>
#include <vector>

namespace ConversionEngine {

class LoudnessGating
{
public:
    static constexpr std::size_t blocksPerWindow = 40;
    static constexpr std::size_t blocksPerStep = 10;
    static constexpr double absoluteFloorLUFS = -70.0;
    static constexpr double relativeGateLU = 10.0;

    // Frames in one 10 ms block: the nearest whole number (halves away from zero), at least 1.
    static std::size_t blockLengthFrames(double sampleRate);

    // 10 × log10(power + 1e-12) − 0.691.
    static double loudnessOf(double meanPower);

    // Window powers from prefix sums of the blocks; none when there are fewer than 40 blocks.
    // A tail shorter than one step takes no part.
    static std::vector<double> windowPowers(std::span<const double> blockPowers);

    // The whole result, given the blocks and the largest interpolated peak (linear).
    static LoudnessResult evaluate(std::span<const double> blockPowers, float linearPeak);
};

} // namespace ConversionEngine
