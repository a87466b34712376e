// SPDX-License-Identifier: GPL-3.0-or-later
// Numbers with a fixed count of decimals and a point as the decimal mark, whatever the locale:
// the one formatter for every figure the program writes into names and texts. Any thread.
// Rounding is to the nearest, ties to the even digit on the exact binary value (as printf does).
#pragma once

#include <string>

namespace ConversionEngine {

class FixedDecimals
{
public:
    // `value` with `decimals` digits after the point ("-1.0", "12.3", "-23"); "nan", "inf" and
    // "-inf" for what is no finite number.
    static std::string text(double value, int decimals);
};

} // namespace ConversionEngine
