// SPDX-License-Identifier: GPL-3.0-or-later
// --inspect: analyses each file as the engine's media inspection does and prints one JSON object
// per file on standard output (an array when several were given); a file that cannot be
// inspected gets its failure's text on standard error, and the others are still printed. The
// inspection's console lines go to standard error meanwhile, so that standard output holds JSON
// only. Main thread only.
#pragma once

#include <QCoro/QCoroTask>
#include <QString>
#include <QStringList>

#include <exception>

namespace Ondrilet {

class TerminalOutput;

class InspectCommand
{
public:
    InspectCommand() = delete;

    // The exit status: 0 when every file was inspected, 1 when any was not.
    static QCoro::Task<int> run(QStringList files, TerminalOutput* terminal);

    // "<file>: <text>", the text being the error's own description.
    static QString failureText(const QString& file, const std::exception_ptr& error);
};

} // namespace Ondrilet
