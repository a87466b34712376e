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

// Which step fails, and what the run must then say and leave.
struct Step
{
    const char* name;
    QString call;
    QString match; // "output" stands for the output's own file name
    int after = 0;
    int times = 0;
    bool inPlaceOnly = false;
};

const QList<Step>& steps()
{
    static const QList<Step> list{
        {"create output", QStringLiteral("openat"), QStringLiteral("output"), 0, 0, false},
        {"first write", QStringLiteral("write"), QStringLiteral("output"), 0, 0, false},
        {"write mid-stream", QStringLiteral("write"), QStringLiteral("output"), 20, 0, false},
        {"sync output", QStringLiteral("fsync"), QString(), 0, 0, true},
        {"move original aside", QStringLiteral("rename"), QString(), 0, 0, true},
        {"move new file in", QStringLiteral("rename"), QString(), 1, 0, true},
        {"move new file in, once", QStringLiteral("rename"), QString(), 1, 1, true},
        {"set permissions", QStringLiteral("chmod"), QString(), 0, 0, true},
        {"sync folder", QStringLiteral("fsync"), QString(), 1, 0, true},
        {"remove backup", QStringLiteral("unlink"), QString(), 0, 0, true},
    };
    return list;
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

Q_DECLARE_METATYPE(Step)

class TestFaultMatrix : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;
    QString m_fixtures;
    int m_cases = 0;

    QString sourceFor(const OutputKind& kind)
    {
        const QString name =
            QStringLiteral("source-") + kind.name + QLatin1Char('.') + kind.extension;
        const QString path = m_fixtures + QLatin1Char('/') + name;
        if (!QFileInfo::exists(path) &&
            Fixtures::makeTone(m_fixtures, name, 2.0, 44100, 2, kind.sourceCodec).isEmpty())
            qFatal("%s", qPrintable(Fixtures::lastError()));
        return path;
    }

    static bool isCompleteOutput(const QString& path, const OutputKind& kind)
    {
        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(path);
        return probe.found && probe.durationSeconds > 1.9 && probe.durationSeconds < 2.1 &&
               QFileInfo(path).suffix() == kind.extension;
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
        QTest::addColumn<Step>("step");
        QTest::addColumn<QString>("errorName");
        for (const OutputKind& kind : CliHarness::audioKinds()) {
            if (kind.name == QStringLiteral("aiff") || kind.name == QStringLiteral("m4a-alac"))
                continue; // the same writer paths as wav and m4a-aac
            for (Destination destination :
                 {Destination::folder, Destination::besideSource, Destination::inPlace})
                for (const Step& step : steps()) {
                    if (step.inPlaceOnly && destination != Destination::inPlace)
                        continue;
                    for (const char* errorName : {"ENOSPC", "EIO", "EACCES", "EROFS"})
                        QTest::addRow("%s %s, %s %s", qPrintable(kind.name),
                                      qPrintable(CliHarness::destinationName(destination)),
                                      step.name, errorName)
                            << kind << destination << step << QString::fromLatin1(errorName);
                }
        }
    }

    void fault()
    {
        QFETCH(OutputKind, kind);
        QFETCH(Destination, destination);
        QFETCH(Step, step);
        QFETCH(QString, errorName);
        ++m_cases;

        QTemporaryDir root;
        const CliHarness harness(root.path());
        const QString source = harness.work() + QStringLiteral("/a.") + kind.extension;
        QVERIFY(QFile::copy(sourceFor(kind), source));
        const QByteArray original = Fixtures::sha256(source);
        const QString output = harness.outputPath(kind, destination, source);
        const bool inPlace = destination == Destination::inPlace;

        Fault fault;
        fault.call = step.call;
        fault.errorName = errorName;
        fault.after = step.after;
        fault.times = step.times;
        fault.folder = inPlace ? harness.work() : QFileInfo(output).path();
        if (step.match == QStringLiteral("output"))
            fault.match = inPlace ? QStringLiteral("_converting_") : QFileInfo(output).fileName();
        const CliOutcome outcome = harness.run(
            harness.arguments(kind, destination, {QFileInfo(source).fileName()}), fault);

        // The paths the texts name; a helper's UUID is blanked on both sides.
        const QString temp =
            harness.work() + QStringLiteral("/.a_converting_XXXXXXXX.") + kind.extension;
        const QString backup =
            harness.work() + QStringLiteral("/.a_backup_XXXXXXXX.") + kind.extension;
        QString expected;
        Leftover leftover = Leftover::none;
        const QString call = step.call;
        const QString writtenFile = inPlace ? temp : output;
        if (call == QStringLiteral("openat")) {
            expected = mediaFailure(QStringLiteral("create"), writtenFile, errorName);
        } else if (call == QStringLiteral("write")) {
            expected = mediaFailure(QStringLiteral("write"), writtenFile, errorName);
        } else if (call == QStringLiteral("fsync") && step.after == 0) {
            expected = beforeSwap(kind, temp, errorName);
        } else if (call == QStringLiteral("rename") && step.after == 0) {
            expected = beforeSwap(kind, source, errorName);
        } else if (call == QStringLiteral("rename")) {
            expected = duringSwap(temp, errorName);
            // Restoring moves the backup back, unless that move fails as well.
            leftover = step.times == 1 ? Leftover::none : Leftover::backupOnly;
        } else if (call == QStringLiteral("chmod")) {
            expected = duringSwap(source, errorName);
            leftover = Leftover::backupAndOutput;
        } else if (call == QStringLiteral("fsync")) {
            expected = duringSwap(harness.work(), errorName);
            leftover = Leftover::backupAndOutput;
        } else {
            expected = duringSwap(backup, errorName);
            leftover = Leftover::backupAndOutput;
        }

        QVERIFY2(outcome.finished, "the run did not end within 10 s");
        QVERIFY(!outcome.crashed);
        QCOMPARE(blankUuids(outcome.err), expected);
        QCOMPARE(outcome.exitCode, 1);

        const QStringList helpers = CliHarness::hiddenHelpers(harness.work());
        switch (leftover) {
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
            if (leftover == Leftover::backupOnly)
                QVERIFY(!QFileInfo::exists(source));
            else
                QVERIFY(isCompleteOutput(source, kind));
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
