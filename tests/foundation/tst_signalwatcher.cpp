// SPDX-License-Identifier: GPL-3.0-or-later
// A Unix signal delivered as a Qt signal on the main loop: counted arrivals up to the number
// caught, the default action back with the last of them and when the watcher is gone, and a
// burst of arrivals that the pipe hands over together.
#include "platform/foundation/SignalWatcher.h"

#include <QSignalSpy>
#include <QTest>

#include <csignal>

using Platform::SignalWatcher;

namespace {

bool hasDefaultAction(int signalNumber)
{
    struct sigaction current = {};
    sigaction(signalNumber, nullptr, &current);
    return current.sa_handler == SIG_DFL;
}

} // namespace

class TestSignalWatcher : public QObject
{
    Q_OBJECT

private slots:
    void arrivalsAreCountedUntilTheDefaultActionIsBack()
    {
        SignalWatcher watcher(SIGUSR1, 2);
        QSignalSpy received(&watcher, &SignalWatcher::received);
        QVERIFY(!hasDefaultAction(SIGUSR1));
        QCOMPARE(::raise(SIGUSR1), 0);
        // Nothing is delivered inside the handler: only on the main loop.
        QCOMPARE(received.size(), 0);
        QVERIFY(received.wait(5000));
        QCOMPARE(received.takeFirst().front().toInt(), 1);
        QVERIFY(!hasDefaultAction(SIGUSR1));

        QCOMPARE(::raise(SIGUSR1), 0);
        // The last arrival caught puts the default action back at once.
        QVERIFY(hasDefaultAction(SIGUSR1));
        QVERIFY(received.wait(5000));
        QCOMPARE(received.takeFirst().front().toInt(), 2);
    }

    void aBurstIsDeliveredInOrderAndNoFurther()
    {
        SignalWatcher watcher(SIGUSR2, 2);
        QSignalSpy received(&watcher, &SignalWatcher::received);
        QCOMPARE(::raise(SIGUSR2), 0);
        QCOMPARE(::raise(SIGUSR2), 0);
        QTRY_COMPARE(received.size(), 2);
        QCOMPARE(received.at(0).front().toInt(), 1);
        QCOMPARE(received.at(1).front().toInt(), 2);
    }

    void theWatcherGoneTheDefaultActionIsBack()
    {
        {
            SignalWatcher watcher(SIGUSR1, 1);
            QVERIFY(!hasDefaultAction(SIGUSR1));
        }
        QVERIFY(hasDefaultAction(SIGUSR1));
        // A new watcher counts afresh.
        SignalWatcher again(SIGUSR1, 1);
        QSignalSpy received(&again, &SignalWatcher::received);
        QCOMPARE(::raise(SIGUSR1), 0);
        QVERIFY(received.wait(5000));
        QCOMPARE(received.front().front().toInt(), 1);
    }
};

QTEST_GUILESS_MAIN(TestSignalWatcher)
#include "tst_signalwatcher.moc"
