// SPDX-License-Identifier: GPL-3.0-or-later
// The one way every progress view writes a duration: "59s", "1m 0s", "1h 0m 0s".
// A pure function; any thread.
#pragma once

#include <QString>

namespace Ondrilet {

// Truncates `seconds` toward zero to whole seconds first. A value that is not finite or does not
// fit a 64-bit count is a programming error and ends the process.
QString durationText(double seconds);

} // namespace Ondrilet
