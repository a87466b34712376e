// SPDX-License-Identifier: GPL-3.0-or-later
// The bit depths of uncompressed audio output; the raw value is the number of bits.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <array>
#include <optional>

namespace ConversionEngine {

enum class BitDepth
{
    depth16 = 16,
    depth24 = 24,
};

constexpr int rawValue(BitDepth depth)
{
    return static_cast<int>(depth);
}

// Any number other than 16 or 24 finds no case.
std::optional<BitDepth> bitDepthFromRawValue(int bits);

// Every case in declared order, with its raw value.
inline constexpr auto bitDepthTable = enumTable<BitDepth, int>({
    {BitDepth::depth16, 16},
    {BitDepth::depth24, 24},
});
static_assert(bitDepthTable.hasDistinctCases() && bitDepthTable.rawValuesAreEnumerators());

inline const auto& allBitDepths()
{
    return bitDepthTable.allCases();
}

} // namespace ConversionEngine
