// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the trap helper with one trap name and reports how it ended. Test thread only.
#pragma once

#include <QProcess>
#include <QString>

struct TrapRun
{
    bool finished = false;
    QProcess::ExitStatus exitStatus = QProcess::NormalExit;
    QString standardError;

    static TrapRun run(const QString& trapName)
    {
        QProcess helper;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        // Fatal messages must reach the pipe, not a system log.
        environment.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
        helper.setProcessEnvironment(environment);
        helper.start(QStringLiteral(VOCABULARY_TRAP_HELPER), {trapName});
        TrapRun result;
        result.finished = helper.waitForFinished(30000);
        result.exitStatus = helper.exitStatus();
        result.standardError = QString::fromUtf8(helper.readAllStandardError());
        return result;
    }
};
