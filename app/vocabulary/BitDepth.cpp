#include "app/vocabulary/BitDepth.h"

namespace Ondrilet {

std::optional<BitDepth> bitDepthFromRawValue(int bits)
{
    return bitDepthTable.fromRawValue(bits);
}

} // namespace Ondrilet
