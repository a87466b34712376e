// The bit depths the user can pick for uncompressed audio; the raw value is the number of bits.
// Plain value; any thread.
#pragma once

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

inline const std::array<BitDepth, 2>& allBitDepths()
{
    static constexpr std::array<BitDepth, 2> cases{BitDepth::depth16, BitDepth::depth24};
    return cases;
}

} // namespace Ondrilet
