#include "ConversionEngine/vocabulary/BitDepth.h"

namespace ConversionEngine {

std::optional<BitDepth> bitDepthFromRawValue(int bits)
{
    for (BitDepth depth : allBitDepths())
        if (rawValue(depth) == bits)
            return depth;
    return std::nullopt;
}

} // namespace ConversionEngine
