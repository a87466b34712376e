// SPDX-License-Identifier: GPL-3.0-or-later
// ondrilet-reference: writes the manual pages and the shell completion, made from the option
// tables, into the directory given. Runs at build time; not installed. Main thread.
#include "cli/ManPage.h"
#include "cli/ShellCompletion.h"

#include <QCoreApplication>
#include <QDir>
#include <QSaveFile>

#include <cstdio>

namespace {

bool write(const QDir& directory, const QString& name, const QString& text)
{
    QSaveFile file(directory.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit()) {
        std::fprintf(stderr, "ondrilet-reference: cannot write %s\n",
                     qPrintable(directory.filePath(name)));
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        std::fputs("usage: ondrilet-reference DIRECTORY\n", stderr);
        return 2;
    }
    const QDir directory(arguments[1]);
    if (!directory.mkpath(QStringLiteral(".")))
        return 1;
    using namespace Ondrilet;
    const bool written =
        write(directory, QStringLiteral("ondrilet.1"), ManPage::windowPage()) &&
        write(directory, QStringLiteral("ondrilet-cli.1"), ManPage::cliPage()) &&
        write(directory, QStringLiteral("ondrilet-cli.bash"), ShellCompletion::bashScript()) &&
        write(directory, QStringLiteral("_ondrilet-cli"), ShellCompletion::zshScript());
    return written ? 0 : 1;
}
