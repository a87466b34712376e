// SPDX-License-Identifier: GPL-3.0-or-later
// The bit depths the user can pick for uncompressed audio; the raw value is the number of bits.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <array>
#include <optional>

namespace Ondrilet {

enum class BitDepth
{
    depth16 = 16,
    depth24 = 24,
};

constexpr int rawValue(BitDepth depth)
{
    return static_cast<int>(depth);
}

std::optional<BitDepth> bitDepthFromRawValue(int bits);

// Every case in declared order, with its raw value.
inline constexpr auto bitDepthTable = ConversionEngine::enumTable<BitDepth, int>({
    {BitDepth::depth16, 16},
    {BitDepth::depth24, 24},
});
static_assert(bitDepthTable.hasDistinctCases() && bitDepthTable.rawValuesAreEnumerators());

inline const auto& allBitDepths()
{
    return bitDepthTable.allCases();
}

} // namespace Ondrilet
