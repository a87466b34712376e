// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/batch/AppMemoryManager.h"
#include "platform/foundation/NotificationCenter.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ManualProgressClock.h"

#include <QCoreApplication>
#include <QTest>
#include <QTimer>

using Ondrilet::AppMemoryManager;
using TestSupport::ManualProgressClock;

namespace {

const QString category = QStringLiteral("Ondrilet.AppMemoryManager");
constexpr qint64 mebibyte = 1048576;

// Counts the posts of "memoryPressureDetected" while it lives.
class PressureListener : public QObject
{
public:
    PressureListener()
    {
        Platform::NotificationCenter::defaultCenter().addObserver(
            this, QStringLiteral("memoryPressureDetected"), nullptr,
            [this](const Platform::NotificationCenter::Notification& notification) {
                ++posts;
                withObject = withObject || notification.object != nullptr;
            });
    }
    ~PressureListener() override
    {
        Platform::NotificationCenter::defaultCenter().removeObserver(this);
    }

    // Posts arrive on a later turn of the main loop.
    int delivered()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
        return posts;
    }

    int posts = 0;
    bool withObject = false;
};

} // namespace

class TestAppMemoryManager : public QObject
{
    Q_OBJECT

private slots:
    void constructionSchedulesTheCheckWithoutRunningIt()
    {
        ManualProgressClock clock;
        LogCapture log(category);
        AppMemoryManager manager;
        int reads = 0;
        manager.setResidentSizeSource([&reads] {
            ++reads;
            return 2048 * mebibyte;
        });
        QCOMPARE(log.lines(), (QList<LogCapture::Line>{
                                  {QtInfoMsg, QStringLiteral("AppMemoryManager initialized")}}));
        QCOMPARE(manager.isMemoryPressureHigh(), false);
        QCOMPARE(manager.memoryUsageMB(), 0.0);
        QCOMPARE(manager.lastCleanupTime(), clock.now());
        QCOMPARE(AppMemoryManager::cleanupInterval, 300.0);
        QVERIFY(manager.memoryMonitorTimer() != nullptr);
        QCOMPARE(manager.memoryMonitorTimer()->interval(), 30000);
        QCOMPARE(manager.memoryMonitorTimer()->isSingleShot(), false);
        QCOMPARE(manager.memoryMonitorTimer()->isActive(), true);
        QCOMPARE(reads, 0);
    }

    void exactly1024MebibytesIsNotHigh()
    {
        ManualProgressClock clock;
        PressureListener listener;
        AppMemoryManager manager;
        manager.setResidentSizeSource([] { return 1024 * mebibyte; });
        LogCapture log(category);
        clock.advance(30);
        manager.handleMemoryTimer();
        QCOMPARE(manager.memoryUsageMB(), 1024.0);
        QCOMPARE(manager.isMemoryPressureHigh(), false);
        QVERIFY(log.lines().isEmpty());
        QCOMPARE(listener.delivered(), 0);
    }

    void aboveTheLimitLogsAndPosts()
    {
        ManualProgressClock clock;
        PressureListener listener;
        AppMemoryManager manager;
        // 1024.1 MiB, to the byte.
        manager.setResidentSizeSource([] { return qint64(1073846682); });
        LogCapture log(category);
        clock.advance(30);
        manager.handleMemoryTimer();
        QCOMPARE(manager.isMemoryPressureHigh(), true);
        QVERIFY(qAbs(manager.memoryUsageMB() - 1024.1) < 1e-6);
        QCOMPARE(log.lines(),
                 (QList<LogCapture::Line>{
                     {QtCriticalMsg, QStringLiteral("High memory usage detected: 1024.1MB")},
                     {QtInfoMsg, QStringLiteral("Performing memory cleanup")}}));
        QCOMPARE(listener.delivered(), 1);
        QCOMPARE(listener.withObject, false);

        // Still high thirty seconds later: it posts again.
        clock.advance(30);
        manager.handleMemoryTimer();
        QCOMPARE(listener.delivered(), 2);
    }

    void fallingBelowClearsTheFlagWithoutAPost()
    {
        ManualProgressClock clock;
        PressureListener listener;
        AppMemoryManager manager;
        qint64 resident = 1500 * mebibyte;
        manager.setResidentSizeSource([&resident] { return resident; });
        clock.advance(30);
        manager.handleMemoryTimer();
        QCOMPARE(listener.delivered(), 1);
        resident = 700 * mebibyte;
        LogCapture log(category);
        clock.advance(30);
        manager.handleMemoryTimer();
        QCOMPARE(manager.isMemoryPressureHigh(), false);
        QCOMPARE(manager.memoryUsageMB(), 700.0);
        QVERIFY(log.lines().isEmpty());
        QCOMPARE(listener.delivered(), 1);
    }

    void thePeriodicCleanupAtNormalMemoryOnlyLogs()
    {
        ManualProgressClock clock;
        PressureListener listener;
        AppMemoryManager manager;
        manager.setResidentSizeSource([] { return 300 * mebibyte; });
        const QDateTime created = clock.now();
        LogCapture log(category);
        clock.advance(300); // exactly the interval: not yet
        manager.handleMemoryTimer();
        QVERIFY(log.lines().isEmpty());
        QCOMPARE(manager.lastCleanupTime(), created);

        clock.advance(30);
        manager.handleMemoryTimer();
        QCOMPARE(log.lines(), (QList<LogCapture::Line>{
                                  {QtInfoMsg, QStringLiteral("Performing memory cleanup")}}));
        QCOMPARE(manager.lastCleanupTime(), clock.now());
        QCOMPARE(listener.delivered(), 0);
    }

    void aHighTickOnTheCleanupClockPostsTwice()
    {
        ManualProgressClock clock;
        PressureListener listener;
        AppMemoryManager manager;
        manager.setResidentSizeSource([] { return 1100 * mebibyte; });
        clock.advance(330);
        LogCapture log(category);
        manager.handleMemoryTimer();
        QCOMPARE(log.texts(), (QStringList{QStringLiteral("High memory usage detected: 1100.0MB"),
                                           QStringLiteral("Performing memory cleanup"),
                                           QStringLiteral("Performing memory cleanup")}));
        QCOMPARE(listener.delivered(), 2);
        QCOMPARE(manager.lastCleanupTime(), clock.now());
    }

    void anUnreadableSizeLeavesTheFiguresAlone()
    {
        ManualProgressClock clock;
        PressureListener listener;
        AppMemoryManager manager;
        qint64 resident = 2000 * mebibyte;
        manager.setResidentSizeSource([&resident] { return resident; });
        clock.advance(30);
        manager.handleMemoryTimer();
        QCOMPARE(listener.delivered(), 1);
        resident = -1;
        clock.advance(300);
        LogCapture log(category);
        manager.handleMemoryTimer();
        QCOMPARE(manager.memoryUsageMB(), 2000.0);
        QCOMPARE(manager.isMemoryPressureHigh(), true);
        // Only the cleanup clock ran, and with the flag still set it posts.
        QCOMPARE(log.texts(), QStringList{QStringLiteral("Performing memory cleanup")});
        QCOMPARE(listener.delivered(), 2);
    }

    void readsThisProcessByDefault()
    {
        ManualProgressClock clock;
        AppMemoryManager manager;
        manager.handleMemoryTimer();
        QVERIFY(manager.memoryUsageMB() > 1.0);
        QVERIFY(manager.memoryUsageMB() < 1024.0);
        QCOMPARE(manager.isMemoryPressureHigh(), false);
    }
};

QTEST_GUILESS_MAIN(TestAppMemoryManager)
#include "tst_appmemorymanager.moc"
