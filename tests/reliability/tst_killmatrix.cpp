// SPDX-License-Identifier: GPL-3.0-or-later
// ondrilet-cli killed with SIGKILL while it writes an output and before each step of the
// in-place swap, held there by the fault library rather than by timing. Afterwards a complete
// copy of the source must exist under its own name or the backup's, and the same command run
// again must succeed.
#include "tests/reliability/CliHarness.h"
#include "tests/support/Fixtures.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace Reliability;
using TestSupport::Fixtures;

namespace {

// Where the child is stopped: at the (after+1)-th counted call, before or after doing it.
struct HoldPoint
{
    const char* name;
    QString call;
    QString match; // "output" stands for the file being written
    int after = 0;
    QString hold;
    bool inPlace = true;
};

const QList<HoldPoint>& holdPoints()
{
    const QString before = QStringLiteral("before");
    static const QList<HoldPoint> list{
        {"writing to a folder", QStringLiteral("write"), QStringLiteral("output"), 20, before,
         false},
        {"writing the hidden file", QStringLiteral("write"), QStringLiteral("output"), 20, before},
        {"syncing the new file", QStringLiteral("fsync"), QString(), 0, before},
        {"moving the original aside", QStringLiteral("rename"), QString(), 0, before},
        {"moving the new file in", QStringLiteral("rename"), QString(), 1, before},
        {"setting permissions", QStringLiteral("chmod"), QString(), 0, before},
        {"syncing the folder", QStringLiteral("fsync"), QString(), 1, before},
        {"removing the backup", QStringLiteral("unlink"), QString(), 0, before},
        {"after removing the backup", QStringLiteral("unlink"), QString(), 0,
         QStringLiteral("after")},
    };
    return list;
}

} // namespace

Q_DECLARE_METATYPE(HoldPoint)

class TestKillMatrix : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;
    QString m_fixtures;

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
        const bool codecMatches = kind.name == QStringLiteral("m4a-aac")
                                      ? probe.codecName == QStringLiteral("aac")
                                  : kind.name == QStringLiteral("m4a-alac")
                                      ? probe.codecName == QStringLiteral("alac")
                                      : probe.codecName.startsWith(QStringLiteral("pcm_"));
        return probe.found && codecMatches && probe.durationSeconds > 1.9 &&
               probe.durationSeconds < 2.1;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        m_fixtures = m_root.filePath(QStringLiteral("fixtures"));
        QVERIFY(QDir().mkpath(m_fixtures));
    }

    void kill_data()
    {
        QTest::addColumn<OutputKind>("kind");
        QTest::addColumn<HoldPoint>("point");
        for (const OutputKind& kind : CliHarness::audioKinds())
            for (const HoldPoint& point : holdPoints())
                QTest::addRow("%s, %s", qPrintable(kind.name), point.name) << kind << point;
    }

    void kill()
    {
        QFETCH(OutputKind, kind);
        QFETCH(HoldPoint, point);

        QTemporaryDir root;
        const CliHarness harness(root.path());
        const QString source = harness.work() + QStringLiteral("/a.") + kind.extension;
        QVERIFY(QFile::copy(sourceFor(kind), source));
        const QByteArray original = Fixtures::sha256(source);
        const Destination destination = point.inPlace ? Destination::inPlace : Destination::folder;
        const QString output = harness.outputPath(kind, destination, source);
        const QStringList arguments =
            harness.arguments(kind, destination, {QFileInfo(source).fileName()});

        Fault fault;
        fault.call = point.call;
        fault.after = point.after;
        fault.hold = point.hold;
        fault.folder = point.inPlace ? harness.work() : harness.out();
        if (point.match == QStringLiteral("output"))
            fault.match =
                point.inPlace ? QStringLiteral("_converting_") : QFileInfo(output).fileName();
        const QString mark = root.filePath(QStringLiteral("held"));
        QProcess process;
        harness.start(process, arguments, fault, mark);
        QVERIFY2(CliHarness::waitForFile(process, mark, 10000),
                 qPrintable(QStringLiteral("never reached the held call: ") +
                            QString::fromUtf8(process.readAllStandardError())));
        process.kill();
        QVERIFY(process.waitForFinished(5000));
        QCOMPARE(process.exitStatus(), QProcess::CrashExit);

        // A complete copy of the source under its own name or the backup's; whatever else
        // stands under the source's name is the complete new file.
        const QStringList helpers = CliHarness::hiddenHelpers(harness.work());
        QStringList backups;
        for (const QString& helper : helpers)
            if (helper.contains(QStringLiteral("_backup_")) &&
                Fixtures::sha256(harness.work() + QLatin1Char('/') + helper) == original)
                backups.append(helper);
        const bool sourceKept = Fixtures::sha256(source) == original;
        if (point.hold == QStringLiteral("after") && point.call == QStringLiteral("unlink")) {
            // The swap was over: the new file stands in place of the source, as asked.
            QVERIFY(isCompleteOutput(source, kind));
            QCOMPARE(helpers, QStringList());
        } else {
            QVERIFY2(sourceKept || !backups.isEmpty(), qPrintable(helpers.join(u',')));
            if (QFileInfo::exists(source) && !sourceKept)
                QVERIFY(isCompleteOutput(source, kind));
        }

        if (!QFileInfo::exists(source)) {
            // Killed between the two moves: the source's name is free and the run refuses.
            const CliOutcome refused = harness.run(arguments);
            QVERIFY(refused.finished);
            QCOMPARE(refused.exitCode, 1);
            QCOMPARE(refused.err, QStringLiteral("Input file not found: a.") + kind.extension +
                                      QStringLiteral("\n\nPlease check that the file exists and "
                                                     "try again.\n"));
            // What the user does then: move the backup back.
            QCOMPARE(backups.size(), 1);
            QVERIFY(QFile::rename(harness.work() + QLatin1Char('/') + backups.first(), source));
        }

        const CliOutcome again = harness.run(arguments);
        QVERIFY2(again.finished, "the second run did not end within 10 s");
        QCOMPARE(again.err, QString());
        QCOMPARE(again.exitCode, 0);
        QVERIFY(isCompleteOutput(output, kind));
    }
};

QTEST_GUILESS_MAIN(TestKillMatrix)
#include "tst_killmatrix.moc"
