// SPDX-License-Identifier: GPL-3.0-or-later
// How numbers appear in the video engine's console lines, the same under every C locale: seconds
// and rates in their shortest exact form with at least one decimal ("2.0", "0.041666666666666664"),
// and fixed decimals where a line asks for them. Any thread.
#pragma once

#include <QString>

namespace ConversionEngine {

class VideoConsoleText
{
public:
    // The shortest text that reads back as the same double, with ".0" after a whole number.
    static QString number(double value);
    static QString number(float value);
    // `decimals` digits after the point.
    static QString fixed(double value, int decimals);
};

} // namespace ConversionEngine
