#include "cli/InterruptWatcher.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace Ondrilet {

namespace {

// The write end of the pipe, for the signal handler; -1 while no watcher exists.
volatile sig_atomic_t writeEnd = -1;
// Interrupts the handler has seen.
volatile sig_atomic_t caught = 0;

void setDisposition(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
}

} // namespace

InterruptWatcher::InterruptWatcher(QObject* parent)
    : QObject(parent)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
        qWarning("Ctrl-C will end the program at once: no pipe for the interrupt (%s)",
                 strerror(errno));
        return;
    }
    m_readEnd = ends[0];
    writeEnd = ends[1];
    caught = 0;
    m_notifier = new QSocketNotifier(m_readEnd, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &InterruptWatcher::drainPipe);
    setDisposition(&InterruptWatcher::onSignal);
}

InterruptWatcher::~InterruptWatcher()
{
    if (m_readEnd < 0)
        return;
    setDisposition(SIG_DFL);
    const int writeDescriptor = writeEnd;
    writeEnd = -1;
    close(writeDescriptor);
    close(m_readEnd);
}

void InterruptWatcher::onSignal(int /*signalNumber*/)
{
    // Only async-signal-safe calls here.
    const int savedErrno = errno;
    caught = caught + 1;
    if (caught >= 2)
        signal(SIGINT, SIG_DFL);
    const char byte = 1;
    // A failed write changes nothing: the pipe can only be full of bytes that tell the same.
    if (writeEnd >= 0) {
        [[maybe_unused]] const ssize_t written = write(writeEnd, &byte, 1);
    }
    errno = savedErrno;
}

void InterruptWatcher::drainPipe()
{
    char bytes[16];
    ssize_t count = 0;
    while ((count = read(m_readEnd, bytes, sizeof bytes)) > 0) {
        for (ssize_t i = 0; i < count && m_received < 2; ++i) {
            if (++m_received == 1)
                emit interrupted();
            else
                emit interruptedAgain();
        }
    }
    if (m_received >= 2)
        m_notifier->setEnabled(false);
}

} // namespace Ondrilet
