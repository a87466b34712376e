// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/desktop/WindowCommandLine.h"

#include "app/desktop/ApplicationVersion.h"

namespace Ondrilet {

const QList<WindowCommandLine::Option>& WindowCommandLine::options()
{
    static const QList<Option> list{
        {QStringLiteral("--help"), QStringLiteral("Show a short help and exit (also -h).")},
        {QStringLiteral("--version"), QStringLiteral("Print the version and exit.")},
    };
    return list;
}

std::optional<QString> WindowCommandLine::answer(const QStringList& arguments)
{
    // Only as the one argument, so that a list of files is never read as options (a file of that
    // name is opened as ./--version).
    if (arguments.size() != 1)
        return std::nullopt;
    if (arguments.first() == QStringLiteral("--version"))
        return versionText();
    if (arguments.first() == QStringLiteral("--help") || arguments.first() == QStringLiteral("-h"))
        return helpText();
    return std::nullopt;
}

QString WindowCommandLine::helpText()
{
    QString text = QStringLiteral(
        "Usage: ondrilet [FILE...]\n\n"
        "Opens the Ondrilet window with FILEs in its list. When Ondrilet is running already, the\n"
        "files go to its window instead, and this launch exits at once.\n\n");
    for (const Option& option : options())
        text += QStringLiteral("  ") + option.name.leftJustified(12, QLatin1Char(' ')) +
                option.help + QLatin1Char('\n');
    text += QStringLiteral("\nFor converting from a terminal, see ondrilet-cli --help.\n");
    return text;
}

QString WindowCommandLine::versionText()
{
    return QStringLiteral("ondrilet ") + ApplicationVersion::text() + QLatin1Char('\n');
}

} // namespace Ondrilet
