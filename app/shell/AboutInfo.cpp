// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/shell/AboutInfo.h"

namespace Ondrilet {

QString AboutInfo::name(const QString& displayName, const QString& plainName)
{
    if (!displayName.isEmpty())
        return displayName;
    if (!plainName.isEmpty())
        return plainName;
    return QStringLiteral("Ondrilet");
}

QString AboutInfo::versionText(const QString& shortVersion, const QString& build)
{
    QString text = QStringLiteral("v") + shortVersion;
    if (!build.isEmpty() && build != shortVersion)
        text += QStringLiteral(" (") + build + QLatin1Char(')');
    return text;
}

QString AboutInfo::copyrightText(int year, const QString& company)
{
    return QStringLiteral("© ") + QString::number(year) + QLatin1Char(' ') + company;
}

} // namespace Ondrilet
