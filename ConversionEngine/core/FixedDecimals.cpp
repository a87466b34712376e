// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/FixedDecimals.h"

#include <array>
#include <charconv>

namespace ConversionEngine {

std::string FixedDecimals::text(double value, int decimals)
{
    // Enough for the largest double written out in full with the decimals asked for here.
    std::array<char, 400> buffer{};
    const std::to_chars_result result = std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                                                      value, std::chars_format::fixed, decimals);
    if (result.ec != std::errc())
        return {};
    return std::string(buffer.data(), result.ptr);
}

} // namespace ConversionEngine
