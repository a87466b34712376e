// SPDX-License-Identifier: GPL-3.0-or-later
// The texts of the About window: the program's name, its version line, the description and the
// copyright line. Pure functions; any thread.
#pragma once

#include <QString>

namespace Ondrilet {

class AboutInfo
{
public:
    static inline const QString companyName = QStringLiteral("Valdrick Works");
    static inline const QString shortDescription =
        QStringLiteral("Fast, professional audio and video conversion for macOS.");

    // The display name, else the plain name, else "Ondrilet".
    static QString name(const QString& displayName, const QString& plainName);
    // "v" + the short version, and " (" + build + ")" when the build is there, not empty and not
    // the short version itself.
    static QString versionText(const QString& shortVersion, const QString& build);
    // "© YEAR COMPANY".
    static QString copyrightText(int year, const QString& company);
};

} // namespace Ondrilet
