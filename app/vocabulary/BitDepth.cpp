// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/BitDepth.h"

namespace Ondrilet {

std::optional<BitDepth> bitDepthFromRawValue(int bits)
{
    return bitDepthTable.fromRawValue(bits);
}

} // namespace Ondrilet
