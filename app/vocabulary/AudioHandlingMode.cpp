// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/AudioHandlingMode.h"

namespace Ondrilet {

QString rawValue(AudioHandlingMode mode)
{
    return audioHandlingModeTable.rawValue(mode);
}

std::optional<AudioHandlingMode> audioHandlingModeFromRawValue(const QString& raw)
{
    return audioHandlingModeTable.fromRawValue(raw);
}

} // namespace Ondrilet
