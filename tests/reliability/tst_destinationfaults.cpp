// SPDX-License-Identifier: GPL-3.0-or-later
// The last step before a file is converted, through ondrilet-cli: an old output in the way is
// removed when overwriting is on. When the file system refuses that removal, the run must end at
// once in the refusal's own words, with exit 1, the old output and every source as they were, and
// the next file not begun.
#include "tests/reliability/CliHarness.h"
#include "tests/support/Fixtures.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace Reliability;
using TestSupport::Fixtures;

namespace {

QString errnoText(const QString& name)
{
    if (name == QStringLiteral("EACCES"))
        return QStringLiteral("Permission denied");
    if (name == QStringLiteral("EIO"))
        return QStringLiteral("Input/output error");
    return QStringLiteral("Read-only file system");
}

} // namespace

class TestDestinationFaults : public QObject
{
    Q_OBJECT

private slots:
    void removingTheOldOutputFails_data()
    {
        QTest::addColumn<QString>("errorName");
        for (const char* name : {"EACCES", "EROFS", "EIO"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void removingTheOldOutputFails()
    {
        QFETCH(QString, errorName);
        QTemporaryDir root;
        QVERIFY(root.isValid());
        const CliHarness harness(root.path());
        QStringList sums;
        for (const QString& name : {QStringLiteral("a.wav"), QStringLiteral("b.wav")}) {
            const QString made =
                Fixtures::makeTone(harness.work(), name, 1.0, 44100, 2,
                                   {QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")});
            QVERIFY2(!made.isEmpty(), qPrintable(Fixtures::lastError()));
            sums << QString::fromLatin1(Fixtures::sha256(made));
        }
        const QString old = harness.out() + QStringLiteral("/a.wav");
        {
            QFile file(old);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("the old output");
        }

        Fault fault;
        fault.call = QStringLiteral("unlink");
        fault.errorName = errorName;
        fault.folder = harness.out();
        fault.match = QStringLiteral("a.wav");
        const OutputKind kind = CliHarness::audioKinds().first();
        const CliOutcome outcome = harness.run(
            kind.options +
                QStringList{QStringLiteral("--no-level"), QStringLiteral("--no-settings-in-name"),
                            QStringLiteral("--no-subfolders"), QStringLiteral("--overwrite"),
                            QStringLiteral("--output-dir"), harness.out(), QStringLiteral("a.wav"),
                            QStringLiteral("b.wav")},
            fault);

        QVERIFY2(outcome.finished, "the run did not end within 10 s");
        QVERIFY(!outcome.crashed);
        QCOMPARE(outcome.err, QStringLiteral("An unexpected error occurred: ") +
                                  errnoText(errorName) + QStringLiteral(": ") + old +
                                  QLatin1Char('\n'));
        QCOMPARE(outcome.exitCode, 1);
        QCOMPARE(Fixtures::filesBelow(harness.out()), QStringList{QStringLiteral("a.wav")});
        QFile file(old);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("the old output"));
        QCOMPARE(QString::fromLatin1(Fixtures::sha256(harness.work() + QStringLiteral("/a.wav"))),
                 sums.at(0));
        QCOMPARE(QString::fromLatin1(Fixtures::sha256(harness.work() + QStringLiteral("/b.wav"))),
                 sums.at(1));
        QCOMPARE(CliHarness::hiddenHelpers(harness.work()), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestDestinationFaults)
#include "tst_destinationfaults.moc"
