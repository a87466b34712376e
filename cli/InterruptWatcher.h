// Turns the terminal's interrupt (Ctrl-C, SIGINT) into Qt signals on the main thread, so that a
// run can stop between two files, or quit and clean up, instead of dying inside a file. Two
// interrupts are caught; with the second the default action is back, so a third ends the program
// at once even when its main loop no longer answers.
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
    // The second one.
    void interruptedAgain();

private:
    static void onSignal(int signalNumber);
    void drainPipe();

    int m_readEnd = -1;
    int m_received = 0;
    QSocketNotifier* m_notifier = nullptr;
};

} // namespace Ondrilet
