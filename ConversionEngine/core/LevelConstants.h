// SPDX-License-Identifier: GPL-3.0-or-later
// The fixed numbers of level processing, each pinned to its exact 32-bit pattern so that a change
// of spelling can never move a bit. Constants only; any thread.
#pragma once

#include <bit>
#include <cstdint>

namespace ConversionEngine {

struct LevelConstants
{
    // -0.2 dBFS, that is 10^(-0.2/20): the brick-wall ceiling after any level gain.
    static constexpr float limit = 0.97723722f;
    // Only the loudness path takes it, so a loudness target lands about 0.175 dB under itself.
    static constexpr float safetyFactor = 0.98f;
    // Added before every logarithm so that no level is ever infinite.
    static constexpr float epsilon = 1e-12f;
    static constexpr double epsilonWide = 1e-12;
};

static_assert(std::bit_cast<std::uint32_t>(LevelConstants::limit) == 0x3F7A2C38u);
static_assert(std::bit_cast<std::uint32_t>(-LevelConstants::limit) == 0xBF7A2C38u);
static_assert(std::bit_cast<std::uint32_t>(LevelConstants::safetyFactor) == 0x3F7AE148u);
static_assert(std::bit_cast<std::uint32_t>(LevelConstants::epsilon) == 0x2B8CBCCCu);

} // namespace ConversionEngine
