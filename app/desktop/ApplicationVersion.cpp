// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/desktop/ApplicationVersion.h"

namespace Ondrilet {

QString ApplicationVersion::text()
{
    // Defined for this one file only, so that a new version rebuilds one file.
    return QStringLiteral(ONDRILET_VERSION);
}

} // namespace Ondrilet
