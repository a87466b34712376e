// Turns the terminal's interrupt (Ctrl-C, SIGINT) into a Qt signal on the main thread, so that a
// run can stop between two files instead of dying inside one. Only the first interrupt is
// caught: from then on the default action is back, and a second Ctrl-C ends the program at once.
// One object at a time, made and destroyed on the main thread.
#pragma once

#include <QObject>

class QSocketNotifier;

namespace Ondrilet {

class InterruptWatcher : public QObject
{
    Q_OBJECT

public:
    explicit InterruptWatcher(QObject* parent = nullptr);
    // Puts the default action back.
    ~InterruptWatcher() override;
    InterruptWatcher(const InterruptWatcher&) = delete;
    InterruptWatcher& operator=(const InterruptWatcher&) = delete;

signals:
    // The first interrupt has arrived; delivered on the main loop.
    void interrupted();

private:
    static void onSignal(int signalNumber);
    void drainPipe();

    int m_readEnd = -1;
    QSocketNotifier* m_notifier = nullptr;
};

} // namespace Ondrilet
