// SPDX-License-Identifier: GPL-3.0-or-later
// --measure: runs the loudness analysis and then the peak pass over one file, as the audio
// engine runs them before a level target, and prints their results as JSON on standard output;
// a failure prints its text on standard error. Main thread only (the peak pass needs it).
#pragma once

#include <QCoro/QCoroTask>
#include <QString>

namespace Ondrilet {

class TerminalOutput;

class MeasureCommand
{
public:
    MeasureCommand() = delete;

    // The exit status: 0 with the JSON printed, 1 with the failure's text printed.
    static QCoro::Task<int> run(QString file, TerminalOutput* terminal);

    // The text a failure of either pass shows: the error's own description, with the recovery
    // suggestion where the error has one.
    static QString failureText(const std::exception_ptr& error);
};

} // namespace Ondrilet
