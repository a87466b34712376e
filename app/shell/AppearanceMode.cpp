// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/shell/AppearanceMode.h"

namespace Ondrilet {

QString rawValue(AppearanceMode mode)
{
    switch (mode) {
    case AppearanceMode::system:
        return QStringLiteral("System");
    case AppearanceMode::light:
        return QStringLiteral("Light");
    case AppearanceMode::dark:
        return QStringLiteral("Dark");
    }
    return QStringLiteral("System");
}

AppearanceMode appearanceModeFromStored(const QString& raw)
{
    for (AppearanceMode mode : allAppearanceModes())
        if (rawValue(mode) == raw)
            return mode;
    return AppearanceMode::system;
}

} // namespace Ondrilet
