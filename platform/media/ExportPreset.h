// SPDX-License-Identifier: GPL-3.0-or-later
// Names of whole-file export presets. The engine carries them as a vocabulary; no export
// session stands behind them in this media layer. Any thread.
#pragma once

namespace Platform {

enum class ExportPreset
{
    highestQuality,
    preset1920x1080,
    mediumQuality,
    lowQuality,
};

} // namespace Platform
