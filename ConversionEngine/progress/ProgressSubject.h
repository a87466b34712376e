// SPDX-License-Identifier: GPL-3.0-or-later
// Carries the fractions (0 to 1) of one file's conversion from an engine to whoever drives it.
// An engine calls it on the main thread only; an empty subject means nobody listens.
#pragma once

#include <functional>

namespace ConversionEngine {

using ProgressSubject = std::function<void(double fraction)>;

} // namespace ConversionEngine
