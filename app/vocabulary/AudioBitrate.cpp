// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/AudioBitrate.h"

namespace Ondrilet {

std::optional<AudioBitrate> audioBitrateFromRawValue(int kilobitsPerSecond)
{
    return audioBitrateTable.fromRawValue(kilobitsPerSecond);
}

} // namespace Ondrilet
