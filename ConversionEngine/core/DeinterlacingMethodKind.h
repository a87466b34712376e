// SPDX-License-Identifier: GPL-3.0-or-later
// The deinterlacing filters as core sees them: the engine's method cases in the same order, so
// the engine maps its own value across case by case. Any thread.
#pragma once

namespace ConversionEngine {

enum class DeinterlacingMethodKind
{
    yadif,
    bwdif,
    w3fdif,
    linearBlend,
    bob,
};

} // namespace ConversionEngine
