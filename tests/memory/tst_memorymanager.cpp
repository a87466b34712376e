// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/memory/MemoryManager.h"
#include "platform/foundation/MemoryPressureSource.h"
#include "platform/media/SampleBuffer.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ManualProgressClock.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>
#include <vector>

using ConversionEngine::MemoryManager;
using ConversionEngine::MemoryStats;
using Platform::SampleBuffer;
using TestSupport::ManualProgressClock;

namespace {

const QString category = QStringLiteral("Ondrilet.MemoryManager");

std::shared_ptr<SampleBuffer> makeBuffer(int frames = 1024)
{
    return SampleBuffer::make(Platform::MediaTime::zero(), 48000, 2, frames);
}

std::vector<std::shared_ptr<SampleBuffer>> makeBuffers(int count)
{
    std::vector<std::shared_ptr<SampleBuffer>> buffers;
    buffers.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        buffers.push_back(makeBuffer(0));
    return buffers;
}

void deliverQueuedCalls()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
}

} // namespace

class TestMemoryManager : public QObject
{
    Q_OBJECT

private slots:
    void constructionStartsMonitoringAndLogs()
    {
        LogCapture log(category);
        MemoryManager manager(50, 20);
        QCOMPARE(log.lines(),
                 (QList<LogCapture::Line>{
                     {QtInfoMsg, QStringLiteral("MemoryManager initialized with pool size: 50")}}));
        QCOMPARE(manager.memoryUsage(), qint64(0));
        QCOMPARE(manager.peakMemoryUsage(), qint64(0));
        QCOMPARE(manager.bufferPoolSize(), 0);
        QCOMPARE(manager.isMemoryPressureHigh(), false);
        QCOMPARE(manager.maxBufferPoolSize(), 50);
        QCOMPARE(manager.maxActiveBuffers(), 20);
        QCOMPARE(MemoryManager::memoryPressureThreshold, qint64(1073741824));
        QVERIFY(manager.memoryMonitorTimer() != nullptr);
        QCOMPARE(manager.memoryMonitorTimer()->interval(), 1000);
        QCOMPARE(manager.memoryMonitorTimer()->isSingleShot(), false);
        QCOMPARE(manager.memoryMonitorTimer()->isActive(), true);
        QCOMPARE(manager.memorySource()->isActive(), true);
        QVERIFY(manager.getMemoryStats() == MemoryStats{});
    }

    void acquiringFromAFreshManagerGivesNothingSilently()
    {
        MemoryManager manager(50, 20);
        LogCapture log(category);
        QVERIFY(manager.acquireBuffer() == nullptr);
        QVERIFY(log.lines().isEmpty());
    }

    void acquiringAtTheActiveLimitLogsExhaustion()
    {
        MemoryManager manager(50, 20);
        const auto buffers = makeBuffers(20);
        for (const auto& buffer : buffers)
            manager.trackBuffer(buffer);
        LogCapture log(category);
        QVERIFY(manager.acquireBuffer() == nullptr);
        QCOMPARE(log.lines(),
                 (QList<LogCapture::Line>{
                     {QtCriticalMsg,
                      QStringLiteral("Buffer pool exhausted and active buffer limit reached")}}));
        // Tracking does not test the limit.
        const auto extra = makeBuffer();
        manager.trackBuffer(extra);
        QCOMPARE(manager.getMemoryStats().activeBuffers, 21);
    }

    void theOldestIdleBufferIsHandedOutFirst()
    {
        MemoryManager manager(50, 20);
        const auto first = makeBuffer();
        const auto second = makeBuffer();
        manager.trackBuffer(first);
        manager.trackBuffer(second);
        manager.releaseBuffer(first);
        manager.releaseBuffer(second);
        QCOMPARE(manager.bufferPoolSize(), 2);
        QVERIFY(manager.acquireBuffer() == first);
        const MemoryStats stats = manager.getMemoryStats();
        QCOMPARE(stats.bufferPoolSize, 1);
        QCOMPARE(stats.activeBuffers, 1);
        QCOMPARE(stats.currentUsage, qint64(2 * 4096));
        QCOMPARE(manager.bufferPoolSize(), 1);
        QVERIFY(manager.acquireBuffer() == second);
        QVERIFY(manager.acquireBuffer() == nullptr);
    }

    void aBufferBeyondAFullPoolIsDropped()
    {
        MemoryManager manager(50, 20);
        auto buffers = makeBuffers(51);
        for (const auto& buffer : buffers)
            manager.releaseBuffer(buffer);
        QCOMPARE(manager.bufferPoolSize(), 50);
        QCOMPARE(manager.getMemoryStats().bufferPoolSize, 50);
        QCOMPARE(buffers.back().use_count(), 1); // the 51st is not kept
        QCOMPARE(buffers.front().use_count(), 2);
        QCOMPARE(manager.memoryUsage(), qint64(50 * 4096));
    }

    void aBufferNeverTrackedStillEntersThePool()
    {
        MemoryManager manager(50, 20);
        const auto stranger = makeBuffer();
        manager.releaseBuffer(stranger);
        QCOMPARE(manager.bufferPoolSize(), 1);
        QCOMPARE(manager.getMemoryStats().activeBuffers, 0);
        QVERIFY(manager.acquireBuffer() == stranger);
    }

    void usageCountsEveryBufferAsFourKibibytes()
    {
        MemoryManager manager(50, 20);
        const auto big = SampleBuffer::make(Platform::MediaTime::zero(), 48000, 8, 48000);
        const auto small = makeBuffer(1);
        QSignalSpy usage(&manager, &MemoryManager::memoryUsageChanged);
        manager.trackBuffer(big);
        manager.trackBuffer(small);
        QCOMPARE(manager.memoryUsage(), qint64(8192));
        QCOMPARE(manager.peakMemoryUsage(), qint64(8192));
        QCOMPARE(usage.count(), 2);
        manager.releaseBuffer(big);
        manager.releaseBuffer(small);
        QCOMPARE(manager.memoryUsage(), qint64(8192)); // idle buffers count as well
        QVERIFY(manager.acquireBuffer() == big);
        manager.memoryMonitorTick();
        QCOMPARE(manager.memoryUsage(), qint64(8192));
        QCOMPARE(manager.peakMemoryUsage(), qint64(8192));
    }

    void onlyMoreThanOneGibibyteOfBuffersThrottles()
    {
        MemoryManager manager(50, 20);
        const auto buffers = makeBuffers(262145);
        for (size_t i = 0; i < 262144; ++i)
            manager.trackBuffer(buffers[i]);
        QCOMPARE(manager.memoryUsage(), qint64(1073741824));
        QCOMPARE(manager.shouldThrottleProcessing(), false);
        manager.trackBuffer(buffers.back());
        QCOMPARE(manager.memoryUsage(), qint64(1073745920));
        QCOMPARE(manager.shouldThrottleProcessing(), true);
        QCOMPARE(manager.getMemoryStats().currentUsageMB(), 1024.00390625);
    }

    void pressureEmptiesThePoolAndClearsFiveSecondsLater()
    {
        ManualProgressClock clock;
        MemoryManager manager(50, 20);
        const auto buffers = makeBuffers(4);
        for (const auto& buffer : buffers)
            manager.trackBuffer(buffer);
        for (size_t i = 0; i < 3; ++i)
            manager.releaseBuffer(buffers[i]);
        QCOMPARE(manager.bufferPoolSize(), 3);
        LogCapture log(category);

        manager.memorySource()->reportStall();
        QCOMPARE(manager.isMemoryPressureHigh(), false); // handled on a later turn
        deliverQueuedCalls();
        QCOMPARE(manager.isMemoryPressureHigh(), true);
        QCOMPARE(manager.bufferPoolSize(), 0);
        QCOMPARE(
            log.lines(),
            (QList<LogCapture::Line>{
                {QtCriticalMsg, QStringLiteral("Memory pressure detected - cleaning up buffers")},
                {QtInfoMsg,
                 QStringLiteral("Removed 3 buffers from pool due to memory pressure")}}));
        const MemoryStats stats = manager.getMemoryStats();
        QCOMPARE(stats.bufferPoolSize, 0);
        QCOMPARE(stats.activeBuffers, 1); // buffers in use are left alone
        QCOMPARE(stats.isUnderPressure, true);
        QCOMPARE(manager.memoryUsage(), qint64(4 * 4096)); // the estimate waits for the next tick
        QCOMPARE(manager.shouldThrottleProcessing(), true);
        manager.memoryMonitorTick();
        QCOMPARE(manager.memoryUsage(), qint64(4096));

        clock.advance(4.999);
        QCOMPARE(manager.isMemoryPressureHigh(), true);
        clock.advance(0.001);
        QCOMPARE(manager.isMemoryPressureHigh(), false);
        QCOMPARE(manager.shouldThrottleProcessing(), false);
    }

    void aSecondPressureEventDoesNotExtendTheFirstDelay()
    {
        ManualProgressClock clock;
        MemoryManager manager(50, 20);
        Platform::MemoryPressureSource* source = manager.memorySource();
        source->setQuietIntervalSeconds(0.01);
        source->reportStall();
        deliverQueuedCalls();
        QCOMPARE(manager.isMemoryPressureHigh(), true);

        clock.advance(3);
        // The return to normal is an event of its own, and it is handled like the first.
        LogCapture log(category);
        QTRY_VERIFY_WITH_TIMEOUT(!source->isUnderPressure(), 5000);
        QTRY_COMPARE_WITH_TIMEOUT(log.lines().size(), 2, 5000);
        QCOMPARE(log.lines().front().text,
                 QStringLiteral("Memory pressure detected - cleaning up buffers"));
        QCOMPARE(clock.pendingCount(), 2);

        clock.advance(2); // five seconds after the first event
        QCOMPARE(manager.isMemoryPressureHigh(), false);
        QCOMPARE(clock.pendingCount(), 1);
        clock.advance(3);
        QCOMPARE(manager.isMemoryPressureHigh(), false);
        QCOMPARE(clock.pendingCount(), 0);
    }

    void cleanupStopsMonitoringForGoodAndKeepsThePeak()
    {
        MemoryManager manager(50, 20);
        const auto buffers = makeBuffers(3);
        for (const auto& buffer : buffers)
            manager.trackBuffer(buffer);
        manager.releaseBuffer(buffers[0]);
        LogCapture log(category);
        manager.cleanup();
        QCOMPARE(log.lines(), (QList<LogCapture::Line>{
                                  {QtInfoMsg, QStringLiteral("MemoryManager cleanup completed")}}));
        const MemoryStats stats = manager.getMemoryStats();
        QCOMPARE(stats.currentUsage, qint64(0));
        QCOMPARE(stats.peakUsage, qint64(3 * 4096));
        QCOMPARE(stats.bufferPoolSize, 0);
        QCOMPARE(stats.activeBuffers, 0);
        QCOMPARE(stats.peakUsageMB(), 0.01171875);
        QVERIFY(manager.memoryMonitorTimer() == nullptr);
        QCOMPARE(manager.memorySource()->isActive(), false);

        // Pressure no longer reaches it, but tracking still works.
        manager.memorySource()->reportStall();
        deliverQueuedCalls();
        QCOMPARE(manager.isMemoryPressureHigh(), false);
        manager.trackBuffer(buffers[1]);
        QCOMPARE(manager.memoryUsage(), qint64(4096));
        manager.releaseBuffer(buffers[1]);
        QCOMPARE(manager.bufferPoolSize(), 1);
        QCOMPARE(manager.getMemoryStats().peakUsage, qint64(3 * 4096));
    }
};

QTEST_GUILESS_MAIN(TestMemoryManager)
#include "tst_memorymanager.moc"
