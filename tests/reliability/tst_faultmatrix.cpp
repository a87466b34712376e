// SPDX-License-Identifier: GPL-3.0-or-later
// File calls made to fail while ondrilet-cli converts: creating, writing and syncing the output,
// and each move and removal of the in-place swap, with ENOSPC, EIO, EACCES and EROFS, for every
// output kind sent to a folder, beside the source and over it. Each run must end within the time
// limit in its exact text with exit 1, keep the source's bytes (under its own name, or under the
// backup's where the swap had gone that far), and leave no partial output or hidden helper file
// except the backup the swap leaves when it fails after the new file is in place.
#include "tests/reliability/CliHarness.h"
#include "tests/support/Fixtures.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Reliability;
using TestSupport::Fixtures;

namespace {

// Where the source's bytes are after the failure.
enum class Leftover
{
    none,            // the source under its own name, no helper file
    backupAndOutput, // the converted file under the source's name, the source in the backup
    backupOnly,      // nothing under the source's name, the source in the backup
};

// Which call fails; "mid-stream" counts as CliHarness::midStreamWrites says.
const QList<FilePoint>& steps()
{
    const QString none;
    static const QList<FilePoint> list{
        {"create output", QStringLiteral("openat"), true, 0, 0, none, false},
        {"first write", QStringLiteral("write"), true, 0, 0, none, false},
        {"write mid-stream", QStringLiteral("write"), true, 20, 0, none, false},
        {"sync output", QStringLiteral("fsync"), false, 0, 0, none, true},
        {"move original aside", QStringLiteral("rename"), false, 0, 0, none, true},
        {"move new file in", QStringLiteral("rename"), false, 1, 0, none, true},
        {"move new file in, once", QStringLiteral("rename"), false, 1, 1, none, true},
        {"set permissions", QStringLiteral("chmod"), false, 0, 0, none, true},
        {"sync folder", QStringLiteral("fsync"), false, 1, 0, none, true},
        {"remove backup", QStringLiteral("unlink"), false, 0, 0, none, true},
    };
    return list;
}

bool isMidStream(const FilePoint& step)
{
    return step.call == QStringLiteral("write") && step.after > 0;
}

QString errnoText(const QString& name)
{
    if (name == QStringLiteral("ENOSPC"))
        return QStringLiteral("No space left on device");
    if (name == QStringLiteral("EIO"))
        return QStringLiteral("Input/output error");
    if (name == QStringLiteral("EACCES"))
        return QStringLiteral("Permission denied");
    return QStringLiteral("Read-only file system");
}

const QString diskFull = QStringLiteral(
    "Insufficient disk space. Required: 0MB, Available: 0MB\n\nFree up disk space or "
    "choose a different output location.\n");

QString failed(const QString& reason)
{
    return QStringLiteral("Conversion failed: ") + reason +
           QStringLiteral("\n\nTry using different conversion settings or check the input "
                          "file.\n");
}

// The writer's own failure, mapped as the failure model maps media errors.
QString mediaFailure(const QString& verb, const QString& path, const QString& errorName)
{
    if (errorName == QStringLiteral("ENOSPC"))
        return diskFull;
    return failed(QStringLiteral("AVFoundation error: Cannot ") + verb + QLatin1Char(' ') + path +
                  QStringLiteral(": ") + errnoText(errorName));
}

// A file-system error of the swap before the original moved, as the driver's branch reports it.
QString beforeSwap(const OutputKind& kind, const QString& path, const QString& errorName)
{
    const QString description = errnoText(errorName) + QStringLiteral(": ") + path;
    if (kind.video)
        return QStringLiteral("An unexpected error occurred: ") + description + QLatin1Char('\n');
    return failed(QStringLiteral("Audio extraction failed: ") + description);
}

QString duringSwap(const QString& path, const QString& errorName)
{
    return failed(QStringLiteral("Failed to replace original file: ") + errnoText(errorName) +
                  QStringLiteral(": ") + path);
}

// Helper names carry a fresh UUID prefix; texts are compared with it blanked.
QString blankUuids(QString text)
{
    static const QRegularExpression uuid(QStringLiteral("_(converting|backup)_[0-9A-F]{8}"));
    return text.replace(uuid, QStringLiteral("_\\1_XXXXXXXX"));
}

} // namespace

// What a run must end in.
struct Expected
{
    QString text; // standard error, with helper UUIDs blanked
    Leftover leftover = Leftover::none;
    // The settled case of a video output: the failed append leaves the conversion waiting for
    // good, and only ending the program ends it.
    bool pending = false;
};

class TestFaultMatrix : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;
    QString m_fixtures;
    int m_cases = 0;

    static Expected expectedFor(const OutputKind& kind, const FilePoint& step,
                                const QString& errorName, const QString& work,
                                const QString& source, const QString& writtenFile)
    {
        const QString temp = work + QStringLiteral("/.a_converting_XXXXXXXX.") + kind.extension;
        const QString backup = work + QStringLiteral("/.a_backup_XXXXXXXX.") + kind.extension;
        const QString& call = step.call;
        if (call == QStringLiteral("openat"))
            return {mediaFailure(QStringLiteral("create"), writtenFile, errorName)};
        if (call == QStringLiteral("write")) {
            if (kind.video && isMidStream(step))
                return {QString(), Leftover::none, true};
            return {mediaFailure(QStringLiteral("write"), writtenFile, errorName)};
        }
        if (call == QStringLiteral("fsync") && step.after == 0)
            return {beforeSwap(kind, temp, errorName)};
        if (call == QStringLiteral("rename") && step.after == 0)
            return {beforeSwap(kind, source, errorName)};
        if (call == QStringLiteral("rename")) {
            // Restoring moves the backup back, unless that move fails as well.
            return {duringSwap(temp, errorName),
                    step.times == 1 ? Leftover::none : Leftover::backupOnly};
        }
        if (call == QStringLiteral("chmod"))
            return {duringSwap(source, errorName), Leftover::backupAndOutput};
        if (call == QStringLiteral("fsync"))
            return {duringSwap(work, errorName), Leftover::backupAndOutput};
        return {duringSwap(backup, errorName), Leftover::backupAndOutput};
    }

    // Holds a run at its failed append, checks that it waits, and ends it as Ctrl-C twice or
    // SIGTERM would: the unfinished output goes with the program.
    static void checkPendingThenQuit(const CliHarness& harness, const QStringList& arguments,
                                     const Fault& fault, const QString& mark, QString writtenFile)
    {
        QProcess process;
        harness.start(process, arguments, fault, mark);
        QVERIFY2(CliHarness::waitForFile(process, mark, 10000), "the call never failed");
        if (writtenFile.isEmpty()) {
            // In place: the hidden temporary file, named once it exists.
            const QStringList helpers = CliHarness::hiddenHelpers(harness.work());
            QCOMPARE(helpers.size(), 1);
            QVERIFY(helpers.first().contains(QStringLiteral("_converting_")));
            writtenFile = harness.work() + u'/' + helpers.first();
        }
        QByteArray out;
        QVERIFY2(CliHarness::waitForOutput(process, "\xe2\x9d\x8c Failed to append", 10000, &out),
                 out.constData());
        QCOMPARE(process.state(), QProcess::Running);
        QVERIFY(QFileInfo::exists(writtenFile));
        process.terminate();
        QVERIFY(process.waitForFinished(10000));
        out += process.readAllStandardOutput();
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 143);
        QVERIFY2(out.contains(("\xf0\x9f\x97\x91\xef\xb8\x8f Removed unfinished output: " +
                               QFileInfo(writtenFile).fileName() + u'\n')
                                  .toUtf8()),
                 out.constData());
        QVERIFY2(!QFileInfo::exists(writtenFile), qPrintable(writtenFile));
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        m_fixtures = m_root.filePath(QStringLiteral("fixtures"));
        QVERIFY(QDir().mkpath(m_fixtures));
    }

    void cleanupTestCase() { qInfo("fault cases run: %d", m_cases); }

    void fault_data()
    {
        QTest::addColumn<OutputKind>("kind");
        QTest::addColumn<Destination>("destination");
        QTest::addColumn<FilePoint>("step");
        QTest::addColumn<QString>("errorName");
        QList<OutputKind> kinds;
        for (const OutputKind& kind : CliHarness::audioKinds()) {
            // aiff and m4a-alac take the same writer paths as wav and m4a-aac.
            if (kind.name != QStringLiteral("aiff") && kind.name != QStringLiteral("m4a-alac"))
                kinds.append(kind);
        }
        // One video container: MOV goes through the same writer as MP4.
        kinds.append(CliHarness::videoKinds().first());
        for (const OutputKind& kind : kinds) {
            for (Destination destination :
                 {Destination::folder, Destination::besideSource, Destination::inPlace})
                for (const FilePoint& step : steps()) {
                    if (step.inPlaceOnly && destination != Destination::inPlace)
                        continue;
                    // The errno reaches every video text through the same mapping as audio's;
                    // two of them keep the video rows short.
                    QStringList errorNames{QStringLiteral("ENOSPC"), QStringLiteral("EIO")};
                    if (!kind.video)
                        errorNames << QStringLiteral("EACCES") << QStringLiteral("EROFS");
                    for (const QString& errorName : errorNames)
                        QTest::addRow("%s %s, %s %s", qPrintable(kind.name),
                                      qPrintable(CliHarness::destinationName(destination)),
                                      step.name, qPrintable(errorName))
                            << kind << destination << step << errorName;
                }
        }
    }

    void fault()
    {
        QFETCH(OutputKind, kind);
        QFETCH(Destination, destination);
        QFETCH(FilePoint, step);
        QFETCH(QString, errorName);
        ++m_cases;

        QTemporaryDir root;
        const CliHarness harness(root.path());
        const QString source = harness.work() + QStringLiteral("/a.") + kind.extension;
        QVERIFY(QFile::copy(CliHarness::sourceFor(m_fixtures, kind), source));
        const QByteArray original = Fixtures::sha256(source);
        const QString output = harness.outputPath(kind, destination, source);
        const bool inPlace = destination == Destination::inPlace;
        const QStringList arguments =
            harness.arguments(kind, destination, {QFileInfo(source).fileName()});

        if (isMidStream(step))
            step.after = CliHarness::midStreamWrites(kind);
        Fault fault = harness.faultAt(step, destination, output);
        fault.errorName = errorName;
        const Expected expected = expectedFor(
            kind, step, errorName, harness.work(), source,
            inPlace ? harness.work() + QStringLiteral("/.a_converting_XXXXXXXX.") + kind.extension
                    : output);

        if (expected.pending) {
            checkPendingThenQuit(harness, arguments, fault, root.filePath(QStringLiteral("failed")),
                                 inPlace ? QString() : output);
            if (QTest::currentTestFailed())
                return;
        } else {
            const CliOutcome outcome = harness.run(arguments, fault);
            QVERIFY2(outcome.finished, "the run did not end within 10 s");
            QVERIFY(!outcome.crashed);
            QCOMPARE(blankUuids(outcome.err), expected.text);
            QCOMPARE(outcome.exitCode, 1);
        }

        const QStringList helpers = CliHarness::hiddenHelpers(harness.work());
        switch (expected.leftover) {
        case Leftover::none:
            QCOMPARE(Fixtures::sha256(source), original);
            QCOMPARE(helpers, QStringList());
            break;
        case Leftover::backupAndOutput:
        case Leftover::backupOnly:
            QCOMPARE(helpers.size(), 1);
            QVERIFY(helpers.first().contains(QStringLiteral("_backup_")));
            QCOMPARE(Fixtures::sha256(harness.work() + QLatin1Char('/') + helpers.first()),
                     original);
            if (expected.leftover == Leftover::backupOnly)
                QVERIFY(!QFileInfo::exists(source));
            else
                QVERIFY(CliHarness::isCompleteOutput(source, kind));
            break;
        }
        if (!inPlace) {
            // The partial output is removed with the failed writer.
            QVERIFY2(!QFileInfo::exists(output), qPrintable(output));
            QCOMPARE(Fixtures::filesBelow(harness.out()), QStringList());
        }
    }
};

QTEST_GUILESS_MAIN(TestFaultMatrix)
#include "tst_faultmatrix.moc"
