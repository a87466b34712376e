// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/SerialQueue.h"

#include <QTest>

#include <atomic>
#include <chrono>
#include <memory>
#include <semaphore>
#include <set>
#include <thread>
#include <vector>

using Platform::SerialQueue;
using namespace std::chrono_literals;

class TestSerialQueue : public QObject
{
    Q_OBJECT

private slots:
    void keepsItsLabel()
    {
        const SerialQueue queue(QStringLiteral("crfProcessingQueue"));
        QCOMPARE(queue.label(), QStringLiteral("crfProcessingQueue"));
    }

    void runsBlocksInOrderOnOneWorkerThread()
    {
        SerialQueue queue(QStringLiteral("mediaInputQueue"));
        std::vector<int> order;
        std::set<std::thread::id> threads;
        std::binary_semaphore done(0);
        for (int i = 0; i < 1000; ++i) {
            queue.async([&, i] {
                order.push_back(i);
                threads.insert(std::this_thread::get_id());
                if (i == 999)
                    done.release();
            });
        }
        QVERIFY(done.try_acquire_for(10s));
        QCOMPARE(order.size(), size_t(1000));
        for (int i = 0; i < 1000; ++i)
            QCOMPARE(order[size_t(i)], i);
        QCOMPARE(threads.size(), size_t(1));
        QVERIFY(*threads.begin() != std::this_thread::get_id());
    }

    void isCurrentOnlyOnItsWorker()
    {
        SerialQueue queue(QStringLiteral("q"));
        SerialQueue other(QStringLiteral("other"));
        std::atomic<int> onOwn = -1;
        std::atomic<int> onOther = -1;
        std::binary_semaphore done(0);
        queue.async([&] {
            onOwn = queue.isCurrent() ? 1 : 0;
            onOther = other.isCurrent() ? 1 : 0;
            done.release();
        });
        QVERIFY(done.try_acquire_for(10s));
        QCOMPARE(onOwn.load(), 1);
        QCOMPARE(onOther.load(), 0);
        QVERIFY(!queue.isCurrent());
    }

    void syncNeverOverlapsARunningBlock()
    {
        SerialQueue queue(QStringLiteral("completionQueue"));
        std::atomic<bool> inBlock = false;
        std::atomic<int> finished = 0;
        std::binary_semaphore started(0);
        queue.async([&] {
            inBlock = true;
            started.release();
            std::this_thread::sleep_for(50ms);
            inBlock = false;
            ++finished;
        });
        QVERIFY(started.try_acquire_for(10s));
        bool overlapped = true;
        int finishedSeenInSync = -1;
        std::thread::id ranOn;
        queue.sync([&] {
            overlapped = inBlock.load();
            finishedSeenInSync = finished.load();
            ranOn = std::this_thread::get_id();
        });
        QVERIFY(!overlapped);
        QCOMPARE(finishedSeenInSync, 1);
        QCOMPARE(ranOn, std::this_thread::get_id());
    }

    void syncFromManyThreadsIsExclusive()
    {
        SerialQueue queue(QStringLiteral("completionQueue"));
        std::atomic<int> inside = 0;
        std::atomic<int> maximum = 0;
        int counter = 0;
        const auto guarded = [&] {
            const int now = ++inside;
            int seen = maximum.load();
            while (now > seen && !maximum.compare_exchange_weak(seen, now)) {
            }
            ++counter;
            std::this_thread::sleep_for(100us);
            --inside;
        };
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([&] {
                for (int i = 0; i < 200; ++i) {
                    queue.sync(guarded);
                    queue.async(guarded);
                }
            });
        for (std::thread& thread : threads)
            thread.join();
        std::binary_semaphore done(0);
        queue.async([&] { done.release(); });
        QVERIFY(done.try_acquire_for(10s));
        QCOMPARE(maximum.load(), 1);
        QCOMPARE(counter, 4 * 200 * 2);
    }

    void syncFromItsOwnBlockRunsAtOnce()
    {
        SerialQueue queue(QStringLiteral("completionQueue"));
        std::atomic<bool> ranNested = false;
        std::atomic<bool> nestedOnWorker = false;
        std::binary_semaphore done(0);
        queue.async([&] {
            queue.sync([&] {
                queue.sync([&] {
                    ranNested = true;
                    nestedOnWorker = queue.isCurrent();
                });
            });
            done.release();
        });
        QVERIFY(done.try_acquire_for(10s));
        QVERIFY(ranNested);
        QVERIFY(nestedOnWorker);

        bool ranFromCaller = false;
        queue.sync([&] { queue.sync([&] { ranFromCaller = true; }); });
        QVERIFY(ranFromCaller);
    }

    void twoQueuesRunSideBySide()
    {
        SerialQueue first(QStringLiteral("first"));
        SerialQueue second(QStringLiteral("second"));
        std::binary_semaphore fromSecond(0);
        std::binary_semaphore done(0);
        std::atomic<bool> heard = false;
        // The first queue waits for the second; with one shared thread this could never finish.
        first.async([&] {
            heard = fromSecond.try_acquire_for(10s);
            done.release();
        });
        second.async([&] { fromSecond.release(); });
        QVERIFY(done.try_acquire_for(20s));
        QVERIFY(heard);
    }

    void destructionRunsEveryQueuedBlock()
    {
        std::vector<int> order;
        {
            SerialQueue queue(QStringLiteral("mediaInputQueue"));
            for (int i = 0; i < 50; ++i) {
                queue.async([&, i] {
                    std::this_thread::sleep_for(200us);
                    order.push_back(i);
                    // A block queued while the queue is being torn down still runs.
                    if (i == 49)
                        queue.async([&] { order.push_back(50); });
                });
            }
        }
        QCOMPARE(order.size(), size_t(51));
        for (int i = 0; i <= 50; ++i)
            QCOMPARE(order[size_t(i)], i);
    }
};

QTEST_GUILESS_MAIN(TestSerialQueue)
#include "tst_serialqueue.moc"
