// SPDX-License-Identifier: GPL-3.0-or-later
// The one line of the terminal's progress bar: a bar, the percentage done, the time remaining and
// the status text, cut to the terminal's width. Pure; any thread.
#pragma once

#include <QString>

#include <optional>

namespace Ondrilet {

class ProgressBarText
{
public:
    // `fraction` of the whole run (outside 0…1 or not finite counts as the nearest end, or 0);
    // the percentage is truncated toward zero. `remainingSeconds` is shown in the progress
    // views' own time text, or as "--" while unknown. The result never exceeds `columns` - 1
    // characters, so that the cursor stays on the line.
    static QString render(double fraction, std::optional<double> remainingSeconds,
                          const QString& status, int columns);

    static constexpr int barCells = 24;
};

} // namespace Ondrilet
