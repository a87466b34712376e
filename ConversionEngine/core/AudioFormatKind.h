// SPDX-License-Identifier: GPL-3.0-or-later
// The audio containers the engine can be asked to write, as core sees them: the engine's audio
// format cases in the same order, so the engine maps its own value across case by case. Any thread.
#pragma once

namespace ConversionEngine {

enum class AudioFormatKind
{
    aiff,
    wav,
    m4a,
    caf,
};

} // namespace ConversionEngine
