#include "app/vocabulary/BitDepth.h"

namespace Ondrilet {

std::optional<BitDepth> bitDepthFromRawValue(int bits)
{
    for (BitDepth depth : allBitDepths())
        if (rawValue(depth) == bits)
            return depth;
    return std::nullopt;
}

} // namespace Ondrilet
