// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/LevelMode.h"

namespace Ondrilet {

QString displayName(LevelMode mode)
{
    return levelModeTable.displayText(mode);
}

} // namespace Ondrilet
