// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/reliability/CliHarness.h"

#include "tests/support/Fixtures.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QProcessEnvironment>

#include <cmath>

namespace Reliability {

using TestSupport::Fixtures;

CliHarness::CliHarness(const QString& root)
    : m_home(root + QStringLiteral("/home"))
    , m_work(root + QStringLiteral("/work"))
    , m_out(root + QStringLiteral("/out"))
{
    for (const QString& path : {m_home, m_work, m_out})
        QDir().mkpath(path);
}

QList<OutputKind> CliHarness::audioKinds()
{
    const auto kind = [](const char* name, const char* format, const char* codec,
                         QStringList sourceCodec) {
        const QString extension = QString::fromLatin1(format);
        return OutputKind{QString::fromLatin1(name),
                          {QStringLiteral("--format"), extension, QStringLiteral("--audio-codec"),
                           QString::fromLatin1(codec)},
                          extension,
                          std::move(sourceCodec),
                          QStringLiteral("Audio/") + extension,
                          false,
                          QString::fromLatin1(codec == QByteArrayView("pcm") ? "pcm_" : codec)};
    };
    // CAF is left out: an audio conversion to it ends the process by design.
    return {
        kind("wav", "wav", "pcm", {QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")}),
        kind("aiff", "aiff", "pcm", {QStringLiteral("-c:a"), QStringLiteral("pcm_s16be")}),
        kind("m4a-aac", "m4a", "aac", {QStringLiteral("-c:a"), QStringLiteral("aac")}),
        kind("m4a-alac", "m4a", "alac", {QStringLiteral("-c:a"), QStringLiteral("alac")}),
    };
}

QList<OutputKind> CliHarness::videoKinds()
{
    const auto kind = [](const char* format, const char* subfolder) {
        const QString extension = QString::fromLatin1(format);
        return OutputKind{extension + QStringLiteral("-h264"),
                          {QStringLiteral("--format"), extension, QStringLiteral("--video-codec"),
                           QStringLiteral("h264")},
                          extension,
                          {},
                          QString::fromLatin1(subfolder),
                          true,
                          QStringLiteral("h264")};
    };
    return {kind("mp4", "Video/MP4"), kind("mov", "Video/MOV")};
}

double CliHarness::sourceSeconds(const OutputKind& kind)
{
    return kind.video ? 1.0 : 2.0;
}

int CliHarness::midStreamWrites(const OutputKind& kind)
{
    // A clip of one second goes out in a few large writes, a tone in many small ones.
    return kind.video ? 1 : 20;
}

QString CliHarness::sourceFor(const QString& fixtures, const OutputKind& kind)
{
    const QString name = QStringLiteral("source-") + kind.name + u'.' + kind.extension;
    const QString path = fixtures + u'/' + name;
    if (QFileInfo::exists(path))
        return path;
    const QString made = kind.video ? Fixtures::makeVideo(fixtures, name, sourceSeconds(kind), true)
                                    : Fixtures::makeTone(fixtures, name, sourceSeconds(kind), 44100,
                                                         2, kind.sourceCodec);
    if (made.isEmpty())
        qFatal("%s", qPrintable(Fixtures::lastError()));
    return made;
}

bool CliHarness::isCompleteOutput(const QString& path, const OutputKind& kind)
{
    const QJsonObject json = Fixtures::probe(path);
    const QString type = kind.video ? QStringLiteral("video") : QStringLiteral("audio");
    for (const QJsonValue& value : json.value(QStringLiteral("streams")).toArray()) {
        const QJsonObject stream = value.toObject();
        if (stream.value(QStringLiteral("codec_type")).toString() != type)
            continue;
        if (!stream.value(QStringLiteral("codec_name")).toString().startsWith(kind.codecPrefix))
            return false;
        const double seconds = json.value(QStringLiteral("format"))
                                   .toObject()
                                   .value(QStringLiteral("duration"))
                                   .toString()
                                   .toDouble();
        return std::abs(seconds - sourceSeconds(kind)) < 0.1 &&
               QFileInfo(path).suffix() == kind.extension;
    }
    return false;
}

Fault CliHarness::faultAt(const FilePoint& point, Destination destination,
                          const QString& output) const
{
    const bool inPlace = destination == Destination::inPlace;
    Fault fault;
    fault.call = point.call;
    fault.after = point.after;
    fault.times = point.times;
    fault.hold = point.hold;
    fault.folder = inPlace ? m_work : QFileInfo(output).path();
    if (point.onOutput)
        fault.match = inPlace ? QStringLiteral("_converting_") : QFileInfo(output).fileName();
    return fault;
}

QString CliHarness::destinationName(Destination destination)
{
    switch (destination) {
    case Destination::folder:
        return QStringLiteral("folder");
    case Destination::besideSource:
        return QStringLiteral("beside");
    case Destination::inPlace:
        return QStringLiteral("inplace");
    }
    return {};
}

QStringList CliHarness::arguments(const OutputKind& kind, Destination destination,
                                  const QStringList& files) const
{
    QStringList arguments = kind.options;
    arguments << QStringLiteral("--no-level") << QStringLiteral("--no-settings-in-name");
    switch (destination) {
    case Destination::folder:
        arguments << QStringLiteral("--output-dir") << m_out << QStringLiteral("--no-subfolders");
        break;
    case Destination::besideSource:
        // Same folder, same extension: the overwrite question is asked, though nothing is
        // overwritten below the subfolder.
        arguments << QStringLiteral("--beside-source") << QStringLiteral("--subfolders")
                  << QStringLiteral("--yes");
        break;
    case Destination::inPlace:
        arguments << QStringLiteral("--beside-source") << QStringLiteral("--no-subfolders")
                  << QStringLiteral("--yes");
        break;
    }
    return arguments + files;
}

QString CliHarness::outputPath(const OutputKind& kind, Destination destination,
                               const QString& source) const
{
    const QFileInfo info(source);
    const QString name = info.completeBaseName() + QLatin1Char('.') + kind.extension;
    switch (destination) {
    case Destination::folder:
        return m_out + QLatin1Char('/') + name;
    case Destination::besideSource:
        return info.absolutePath() + QLatin1Char('/') + kind.subfolder + QLatin1Char('/') + name;
    case Destination::inPlace:
        return info.absoluteFilePath();
    }
    return {};
}

void CliHarness::start(QProcess& process, const QStringList& arguments, const Fault& fault,
                       const QString& mark) const
{
    prepare(process, fault, mark);
    process.start(QStringLiteral(ONDRILET_CLI_EXECUTABLE), arguments);
}

void CliHarness::prepare(QProcess& process, const Fault& fault, const QString& mark) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), m_home);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home + QStringLiteral("/.config"));
    environment.remove(QStringLiteral("QT_LOGGING_RULES"));
    environment.remove(QStringLiteral("QT_MESSAGE_PATTERN"));
    if (!fault.call.isEmpty()) {
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(ONDRILET_FAULT_SHIM));
        // A sanitizer runtime wants to be first; the fault library must be first to be seen.
        environment.insert(QStringLiteral("ASAN_OPTIONS"),
                           environment.value(QStringLiteral("ASAN_OPTIONS")) +
                               QStringLiteral(":verify_asan_link_order=0"));
        environment.insert(QStringLiteral("ONDRILET_FAULT_FOLDER"),
                           fault.folder.isEmpty() ? m_work : fault.folder);
        environment.insert(QStringLiteral("ONDRILET_FAULT_CALL"), fault.call);
        environment.insert(QStringLiteral("ONDRILET_FAULT_ERRNO"), fault.errorName);
        environment.insert(QStringLiteral("ONDRILET_FAULT_AFTER"), QString::number(fault.after));
        environment.insert(QStringLiteral("ONDRILET_FAULT_TIMES"), QString::number(fault.times));
        environment.insert(QStringLiteral("ONDRILET_FAULT_MATCH"), fault.match);
        environment.insert(QStringLiteral("ONDRILET_FAULT_HOLD"), fault.hold);
        environment.insert(QStringLiteral("ONDRILET_FAULT_MARK"), mark);
    }
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_work);
}

CliOutcome CliHarness::run(const QStringList& arguments, const Fault& fault,
                           int timeoutMilliseconds) const
{
    QProcess process;
    start(process, arguments, fault);
    return finish(process, timeoutMilliseconds);
}

CliOutcome CliHarness::runAs(const QString& setpriv, const QStringList& arguments) const
{
    QProcess process;
    prepare(process, {}, {});
    process.setProgram(setpriv);
    process.setArguments(
        QStringList{QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
                    QStringLiteral("--clear-groups"), QStringLiteral(ONDRILET_CLI_EXECUTABLE)} +
        arguments);
    process.start();
    return finish(process, 10000);
}

CliOutcome CliHarness::finish(QProcess& process, int timeoutMilliseconds)
{
    CliOutcome outcome;
    outcome.finished = process.waitForFinished(timeoutMilliseconds);
    if (!outcome.finished) {
        process.kill();
        process.waitForFinished(5000);
    }
    outcome.crashed = outcome.finished && process.exitStatus() == QProcess::CrashExit;
    outcome.exitCode = outcome.finished && !outcome.crashed ? process.exitCode() : -1;
    outcome.out = QString::fromUtf8(process.readAllStandardOutput());
    outcome.err = QString::fromUtf8(process.readAllStandardError());
    return outcome;
}

bool CliHarness::waitForFile(QProcess& process, const QString& path, int timeoutMilliseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (!QFileInfo::exists(path)) {
        if (process.state() == QProcess::NotRunning || timer.elapsed() > timeoutMilliseconds)
            return false;
        process.waitForFinished(20);
    }
    return true;
}

bool CliHarness::waitForOutput(QProcess& process, const QByteArray& text, int timeoutMilliseconds,
                               QByteArray* seen)
{
    QElapsedTimer timer;
    timer.start();
    for (;;) {
        *seen += process.readAllStandardOutput();
        if (seen->contains(text))
            return true;
        if (process.state() == QProcess::NotRunning || timer.elapsed() > timeoutMilliseconds)
            return false;
        process.waitForReadyRead(20);
    }
}

QStringList CliHarness::hiddenHelpers(const QString& directory)
{
    QStringList helpers;
    QDirIterator it(directory, QDir::Files | QDir::Hidden | QDir::System,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString name = QFileInfo(path).fileName();
        if (name.startsWith(QLatin1Char('.')) && (name.contains(QStringLiteral("_converting_")) ||
                                                  name.contains(QStringLiteral("_backup_"))))
            helpers.append(QDir(directory).relativeFilePath(path));
    }
    helpers.sort();
    return helpers;
}

} // namespace Reliability
