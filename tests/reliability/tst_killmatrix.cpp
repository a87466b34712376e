// SPDX-License-Identifier: GPL-3.0-or-later
// ondrilet-cli killed with SIGKILL while it writes an output and before each step of the
// in-place swap, held there by the fault library rather than by timing, for audio and video
// outputs. Afterwards a complete copy of the source must exist under its own name or the
// backup's, and the same command run again must succeed, putting a lone backup back first and
// leaving no hidden temporary file.
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

// Where the child is stopped: at the (after+1)-th counted call, before or after doing it. The
// write points count from the file's first write; for a clip see CliHarness::midStreamWrites.
const QList<FilePoint>& holdPoints()
{
    const QString before = QStringLiteral("before");
    static const QList<FilePoint> list{
        {"writing to a folder", QStringLiteral("write"), true, 20, 0, before, false},
        {"writing the hidden file", QStringLiteral("write"), true, 20, 0, before, true},
        {"syncing the new file", QStringLiteral("fsync"), false, 0, 0, before, true},
        {"moving the original aside", QStringLiteral("rename"), false, 0, 0, before, true},
        {"moving the new file in", QStringLiteral("rename"), false, 1, 0, before, true},
        {"setting permissions", QStringLiteral("chmod"), false, 0, 0, before, true},
        {"syncing the folder", QStringLiteral("fsync"), false, 1, 0, before, true},
        {"removing the backup", QStringLiteral("unlink"), false, 0, 0, before, true},
        {"after removing the backup", QStringLiteral("unlink"), false, 0, 0,
         QStringLiteral("after"), true},
    };
    return list;
}

} // namespace

class TestKillMatrix : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;
    QString m_fixtures;
    int m_points = 0;

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        m_fixtures = m_root.filePath(QStringLiteral("fixtures"));
        QVERIFY(QDir().mkpath(m_fixtures));
    }

    void cleanupTestCase() { qInfo("kill points run: %d", m_points); }

    void kill_data()
    {
        QTest::addColumn<OutputKind>("kind");
        QTest::addColumn<FilePoint>("point");
        QList<OutputKind> kinds = CliHarness::audioKinds();
        kinds.append(CliHarness::videoKinds().first());
        for (const OutputKind& kind : kinds)
            for (const FilePoint& point : holdPoints())
                QTest::addRow("%s, %s", qPrintable(kind.name), point.name) << kind << point;
    }

    void kill()
    {
        QFETCH(OutputKind, kind);
        QFETCH(FilePoint, point);
        ++m_points;

        QTemporaryDir root;
        const CliHarness harness(root.path());
        const QString source = harness.work() + QStringLiteral("/a.") + kind.extension;
        QVERIFY(QFile::copy(CliHarness::sourceFor(m_fixtures, kind), source));
        const QByteArray original = Fixtures::sha256(source);
        const Destination destination =
            point.inPlaceOnly ? Destination::inPlace : Destination::folder;
        const QString output = harness.outputPath(kind, destination, source);
        const QStringList arguments =
            harness.arguments(kind, destination, {QFileInfo(source).fileName()});

        FilePoint held = point;
        if (held.call == QStringLiteral("write"))
            held.after = CliHarness::midStreamWrites(kind);
        const Fault fault = harness.faultAt(held, destination, output);
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
            QVERIFY(CliHarness::isCompleteOutput(source, kind));
            QCOMPARE(helpers, QStringList());
        } else {
            QVERIFY2(sourceKept || !backups.isEmpty(), qPrintable(helpers.join(u',')));
            if (QFileInfo::exists(source) && !sourceKept)
                QVERIFY(CliHarness::isCompleteOutput(source, kind));
        }
        const bool nameWasFree = !QFileInfo::exists(source);

        // The same command again: a backup that stands alone goes back under the source's name
        // first, and the killed run's hidden files go.
        const CliOutcome again = harness.run(arguments);
        QVERIFY2(again.finished, "the second run did not end within 10 s");
        QCOMPARE(again.err, QString());
        QCOMPARE(again.exitCode, 0);
        QVERIFY(CliHarness::isCompleteOutput(output, kind));
        QCOMPARE(again.out.contains(QStringLiteral("♻️ Restored original from backup: ")),
                 nameWasFree);
        QStringList left = CliHarness::hiddenHelpers(harness.work());
        if (!nameWasFree) {
            // A backup beside a name that is taken is not the program's to judge: it stays.
            for (const QString& backup : std::as_const(backups))
                left.removeOne(backup);
        }
        QCOMPARE(left, QStringList());
    }
};

QTEST_GUILESS_MAIN(TestKillMatrix)
#include "tst_killmatrix.moc"
