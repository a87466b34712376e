// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/CliCase.h"

#include <QDir>
#include <QFile>
#include <QProcessEnvironment>

namespace TestSupport {

CliCase::CliCase(QString program)
    : m_program(std::move(program))
{}

bool CliCase::beginCase(const QString& root)
{
    const QString base = root + QStringLiteral("/case%1").arg(++m_caseCount);
    m_home = base + QStringLiteral("/home");
    m_work = base + QStringLiteral("/work");
    m_out = base + QStringLiteral("/out");
    return QDir().mkpath(m_home) && QDir().mkpath(m_work) && QDir().mkpath(m_out);
}

void CliCase::start(QProcess& process, const QStringList& arguments) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), m_home);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home + QStringLiteral("/.config"));
    environment.remove(QStringLiteral("QT_LOGGING_RULES"));
    environment.remove(QStringLiteral("QT_MESSAGE_PATTERN"));
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_work);
    process.start(m_program, arguments);
}

ProgramResult CliCase::run(const QStringList& arguments) const
{
    QProcess process;
    start(process, arguments);
    // No clock of its own: a video conversion may take minutes on a loaded machine, and the
    // test's own time limit catches a run that never ends.
    if (!process.waitForFinished(-1))
        qFatal("%s did not finish", qPrintable(m_program));
    ProgramResult result;
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

bool CliCase::waitForOutput(QProcess& process, const QString& text,
                            QProcess::ProcessChannel channel)
{
    process.setReadChannel(channel);
    QByteArray seen;
    while (!seen.contains(text.toUtf8())) {
        if (process.bytesAvailable() == 0 && !process.waitForReadyRead(60000))
            return false;
        seen += process.readAll();
    }
    return true;
}

QStringList CliCase::copiesInWork(const QString& file, int count, const QString& extension) const
{
    QStringList names;
    for (int i = 0; i < count; ++i) {
        const QString name = QChar(u'a' + i) + QLatin1Char('.') + extension;
        const QString path = m_work + QLatin1Char('/') + name;
        QFile::remove(path);
        if (!QFile::copy(file, path))
            qFatal("cannot copy %s into the working folder", qPrintable(file));
        names.append(name);
    }
    return names;
}

} // namespace TestSupport
