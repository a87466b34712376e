// SPDX-License-Identifier: GPL-3.0-or-later
// What the window program's command line accepts besides files: `--version` and `--help`, which
// are answered on standard output before any window or display is needed. The help and the man
// page read the same list. Any thread.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace Ondrilet {

class WindowCommandLine
{
public:
    struct Option
    {
        QString name; // "--version"
        QString help;
    };

    static const QList<Option>& options();
    // The text to print and exit with status 0 when the arguments (without the program's name)
    // ask for the version or the help; nothing when they are files to open.
    static std::optional<QString> answer(const QStringList& arguments);
    static QString helpText();
    static QString versionText();
};

} // namespace Ondrilet
