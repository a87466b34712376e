// SPDX-License-Identifier: GPL-3.0-or-later
// A program (ondrilet-cli) run as a child the way a user runs it, one case at a time: each case
// has a home, a working and an output folder of its own, so that no preference of one run reaches
// another. Runs to the end or started for a test to talk to. Test thread only.
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

namespace TestSupport {

// What a finished run left: its exit status (-1 when it did not exit normally) and both streams.
struct ProgramResult
{
    int exitCode = -1;
    QString out;
    QString err;
};

class CliCase
{
public:
    explicit CliCase(QString program);

    // Makes the folders of the next case below `root` (case1/home, case1/work, case1/out, then
    // case2/…). False when one cannot be made.
    bool beginCase(const QString& root);
    QString home() const { return m_home; }
    QString work() const { return m_work; }
    QString out() const { return m_out; }

    // Starts the program in work(), with home() as its home and none of the caller's settings
    // for Qt's log lines.
    void start(QProcess& process, const QStringList& arguments) const;
    // Runs the program to its end; one that runs for two minutes ends the test program.
    ProgramResult run(const QStringList& arguments) const;

    // Reads `channel` until `text` has appeared in it; false when the program fell silent for a
    // minute first.
    static bool waitForOutput(QProcess& process, const QString& text,
                              QProcess::ProcessChannel channel = QProcess::StandardOutput);

    // `count` copies of `file` in work(), named a.<extension>, b.<extension> …, written afresh;
    // answers their names. A copy that fails ends the test program.
    QStringList copiesInWork(const QString& file, int count, const QString& extension) const;

private:
    QString m_program;
    int m_caseCount = 0;
    QString m_home;
    QString m_work;
    QString m_out;
};

} // namespace TestSupport
