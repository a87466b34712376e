// SPDX-License-Identifier: GPL-3.0-or-later
// Delivers a Unix signal (SIGINT, SIGTERM, SIGHUP …) as a Qt signal on the main loop, so that
// the program can end a conversion cleanly instead of dying inside a file. The handler only
// writes a byte to a pipe that a socket notifier reads. The first `catches` arrivals are
// delivered; with the last of them the default action is back, so one more ends the program
// as the signal would have, even when the main loop no longer answers.
// One watcher per signal at a time; made and destroyed on the main thread.
#pragma once

#include <QObject>

class QSocketNotifier;

namespace Platform {

class SignalWatcher : public QObject
{
    Q_OBJECT

public:
    SignalWatcher(int signalNumber, int catches, QObject* parent = nullptr);
    // Puts the default action back.
    ~SignalWatcher() override;
    SignalWatcher(const SignalWatcher&) = delete;
    SignalWatcher& operator=(const SignalWatcher&) = delete;

    int signalNumber() const { return m_signalNumber; }

signals:
    // The signal has arrived for the `count`-th time (from 1 to `catches`).
    void received(int count);

private:
    static void onSignal(int signalNumber);
    void drainPipe();

    int m_signalNumber = 0;
    int m_catches = 0;
    int m_readEnd = -1;
    int m_delivered = 0;
    QSocketNotifier* m_notifier = nullptr;
};

} // namespace Platform
