// SPDX-License-Identifier: GPL-3.0-or-later
// The guard of a conversion's single resumption: the first attempt wins, from any thread, and
// every later one does nothing.
#include "ConversionEngine/audio/Resumer.h"

#include <QTest>

#include <atomic>
#include <thread>
#include <vector>

using ConversionEngine::Resumer;

class TestResumer : public QObject
{
    Q_OBJECT

private slots:
    void firstAttemptResumesAndLaterOnesDoNothing()
    {
        Resumer resumer;
        QCOMPARE(resumer.resumed(), false);
        int calls = 0;
        int otherCalls = 0;
        resumer.resume([&calls] { ++calls; });
        QCOMPARE(resumer.resumed(), true);
        resumer.resume([&calls] { ++calls; });
        resumer.resume([&otherCalls] { ++otherCalls; });
        QCOMPARE(calls, 1);
        QCOMPARE(otherCalls, 0);
    }

    void emptyContinuationStillCountsAsTheResumption()
    {
        Resumer resumer;
        resumer.resume({});
        int calls = 0;
        resumer.resume([&calls] { ++calls; });
        QCOMPARE(calls, 0);
        QVERIFY(resumer.resumed());
    }

    void racingThreadsResumeExactlyOnce()
    {
        for (int round = 0; round < 200; ++round) {
            Resumer resumer;
            std::atomic<int> calls = 0;
            std::atomic<bool> go = false;
            std::vector<std::thread> threads;
            for (int i = 0; i < 4; ++i)
                threads.emplace_back([&] {
                    while (!go.load())
                        std::this_thread::yield();
                    resumer.resume([&calls] { calls.fetch_add(1); });
                });
            go.store(true);
            for (std::thread& thread : threads)
                thread.join();
            QCOMPARE(calls.load(), 1);
        }
    }
};

QTEST_GUILESS_MAIN(TestResumer)
#include "tst_resumer.moc"
