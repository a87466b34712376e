// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/MemoryPressureSource.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <ctime>

using Platform::MemoryPressureSource;

namespace {

double processCpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

} // namespace

class TestMemoryPressureSource : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void watchesTheKernelsMemoryPressureFile()
    {
        QCOMPARE(MemoryPressureSource::defaultPressureFilePath(),
                 QStringLiteral("/proc/pressure/memory"));
    }

    void systemSourceOpensOrStaysSilent()
    {
        MemoryPressureSource source;
        if (!QFile::exists(MemoryPressureSource::defaultPressureFilePath()))
            QVERIFY(!source.isAvailable());
        qInfo("memory pressure trigger available: %s", source.isAvailable() ? "yes" : "no");
        if (source.isAvailable()) {
            // One window of a second where privileged, else two seconds.
            QVERIFY2(source.quietIntervalSeconds() == 2.0 || source.quietIntervalSeconds() == 4.0,
                     qPrintable(QString::number(source.quietIntervalSeconds())));
        }
        QVERIFY(!source.isActive());
        source.resume();
        QVERIFY(source.isActive());
        // A trigger that keeps reporting itself ready would keep the event loop busy.
        const double cpuBefore = processCpuSeconds();
        QTest::qWait(200);
        QVERIFY2(processCpuSeconds() - cpuBefore < 0.1,
                 qPrintable(QString::number(processCpuSeconds() - cpuBefore)));
        source.cancel();
        QVERIFY(!source.isActive());
        QVERIFY(!source.isAvailable());
    }

    void missingFileGivesNoErrorAndNoEvents()
    {
        MemoryPressureSource source(m_dir.filePath(QStringLiteral("no-such-pressure")));
        QSignalSpy changes(&source, &MemoryPressureSource::pressureChanged);
        QVERIFY(!source.isAvailable());
        source.resume();
        QVERIFY(source.isActive());
        QTest::qWait(100);
        QCOMPARE(changes.count(), 0);
        source.cancel();
        QVERIFY(!source.isActive());
    }

    void aFolderCannotHoldATrigger()
    {
        const MemoryPressureSource source(m_dir.path());
        QVERIFY(!source.isAvailable());
    }

    void quietIntervalDefaultsToTwoWindows()
    {
        const MemoryPressureSource source(m_dir.filePath(QStringLiteral("none")));
        QCOMPARE(source.quietIntervalSeconds(), 4.0);
    }

    void stallsRaiseThePressureOnceAndQuietEndsIt()
    {
        MemoryPressureSource source(m_dir.filePath(QStringLiteral("none")));
        source.setQuietIntervalSeconds(0.05);
        QSignalSpy changes(&source, &MemoryPressureSource::pressureChanged);
        source.resume();
        source.reportStall();
        QCOMPARE(changes.count(), 1);
        QVERIFY(source.isUnderPressure());
        source.reportStall();
        source.reportStall();
        QCOMPARE(changes.count(), 1);
        QTRY_VERIFY(!source.isUnderPressure());
        QCOMPARE(changes.count(), 2);
        source.reportStall();
        QCOMPARE(changes.count(), 3);
    }

    void aStallKeepsThePressureGoing()
    {
        MemoryPressureSource source(m_dir.filePath(QStringLiteral("none")));
        source.setQuietIntervalSeconds(0.15);
        source.resume();
        source.reportStall();
        QTest::qWait(100);
        source.reportStall();
        QTest::qWait(100);
        // 200 ms after the first stall, but only 100 ms after the last one.
        QVERIFY(source.isUnderPressure());
        QTRY_VERIFY(!source.isUnderPressure());
    }

    void suspendedOrCancelledSourceReportsNothing()
    {
        MemoryPressureSource source(m_dir.filePath(QStringLiteral("none")));
        source.setQuietIntervalSeconds(0.02);
        QSignalSpy changes(&source, &MemoryPressureSource::pressureChanged);
        source.reportStall();
        QCOMPARE(changes.count(), 0);
        source.resume();
        source.reportStall();
        QCOMPARE(changes.count(), 1);
        // Cancelled under pressure: no return to normal is reported either.
        source.cancel();
        QTest::qWait(60);
        source.resume();
        QVERIFY(!source.isActive());
        source.reportStall();
        QCOMPARE(changes.count(), 1);
        QVERIFY(!source.isUnderPressure());
    }
};

QTEST_GUILESS_MAIN(TestMemoryPressureSource)
#include "tst_memorypressuresource.moc"
