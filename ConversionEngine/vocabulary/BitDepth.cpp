#include "ConversionEngine/vocabulary/BitDepth.h"

namespace ConversionEngine {

std::optional<BitDepth> bitDepthFromRawValue(int bits)
{
    return bitDepthTable.fromRawValue(bits);
}

} // namespace ConversionEngine
