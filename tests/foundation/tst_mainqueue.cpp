// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/MainQueue.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QThread>

#include <atomic>
#include <thread>

using Platform::MainQueue;

class TestMainQueue : public QObject
{
    Q_OBJECT

private slots:
    void blocksRunLaterInTheOrderGiven()
    {
        QList<int> order;
        MainQueue::async([&] { order.append(1); });
        MainQueue::async([&] { order.append(2); });
        MainQueue::async([&] { order.append(3); });
        QVERIFY(order.isEmpty());
        QTRY_COMPARE(order, (QList<int>{1, 2, 3}));
    }

    void blockFromAWorkerRunsOnTheGuiThread()
    {
        std::atomic<QThread*> ranOn = nullptr;
        std::atomic<bool> queuedFromGuiThread = true;
        std::thread worker([&] {
            queuedFromGuiThread = MainQueue::isCurrent();
            MainQueue::async([&] { ranOn = QThread::currentThread(); });
        });
        worker.join();
        QVERIFY(!queuedFromGuiThread);
        QTRY_VERIFY(ranOn.load() != nullptr);
        QCOMPARE(ranOn.load(), QCoreApplication::instance()->thread());
        QVERIFY(MainQueue::isCurrent());
    }

    void asyncAfterWaitsAtLeastTheDelay()
    {
        QElapsedTimer clock;
        clock.start();
        qint64 ranAfterMilliseconds = -1;
        MainQueue::asyncAfter(0.08, [&] { ranAfterMilliseconds = clock.elapsed(); });
        QTRY_VERIFY(ranAfterMilliseconds >= 0);
        QVERIFY2(ranAfterMilliseconds >= 80, qPrintable(QString::number(ranAfterMilliseconds)));
    }

    void shorterDelayRunsFirst()
    {
        QStringList order;
        MainQueue::asyncAfter(0.06, [&] { order.append(QStringLiteral("late")); });
        MainQueue::asyncAfter(0.01, [&] { order.append(QStringLiteral("early")); });
        MainQueue::asyncAfter(-1.0, [&] { order.append(QStringLiteral("now")); });
        QTRY_COMPARE(order.size(), 3);
        QCOMPARE(order, (QStringList{QStringLiteral("now"), QStringLiteral("early"),
                                     QStringLiteral("late")}));
    }

    void asyncAfterFromAWorkerRunsOnTheGuiThread()
    {
        std::atomic<QThread*> ranOn = nullptr;
        std::thread worker(
            [&] { MainQueue::asyncAfter(0.02, [&] { ranOn = QThread::currentThread(); }); });
        worker.join();
        QTRY_VERIFY(ranOn.load() != nullptr);
        QCOMPARE(ranOn.load(), QCoreApplication::instance()->thread());
    }
};

QTEST_GUILESS_MAIN(TestMainQueue)
#include "tst_mainqueue.moc"
