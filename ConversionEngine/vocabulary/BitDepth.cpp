// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/BitDepth.h"

namespace ConversionEngine {

std::optional<BitDepth> bitDepthFromRawValue(int bits)
{
    return bitDepthTable.fromRawValue(bits);
}

} // namespace ConversionEngine
