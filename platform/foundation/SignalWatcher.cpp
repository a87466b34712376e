// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/SignalWatcher.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace Platform {

namespace {

// Per signal number, for the handler: the pipe's write end (-1 while no watcher exists), the
// arrivals seen and how many of them are caught.
volatile sig_atomic_t writeEnds[NSIG];
volatile sig_atomic_t arrivals[NSIG];
volatile sig_atomic_t catchLimits[NSIG];

void setDisposition(int signalNumber, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(signalNumber, &action, nullptr);
}

} // namespace

SignalWatcher::SignalWatcher(int signalNumber, int catches, QObject* parent)
    : QObject(parent)
    , m_signalNumber(signalNumber)
    , m_catches(catches)
{
    if (signalNumber <= 0 || signalNumber >= NSIG || catches < 1)
        qFatal("SignalWatcher: no signal %d, or nothing to catch", signalNumber);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
        qWarning("Signal %d keeps its default action: no pipe for it (%s)", signalNumber,
                 strerror(errno));
        return;
    }
    m_readEnd = ends[0];
    writeEnds[signalNumber] = ends[1];
    arrivals[signalNumber] = 0;
    catchLimits[signalNumber] = catches;
    m_notifier = new QSocketNotifier(m_readEnd, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &SignalWatcher::drainPipe);
    setDisposition(signalNumber, &SignalWatcher::onSignal);
}

SignalWatcher::~SignalWatcher()
{
    if (m_readEnd < 0)
        return;
    setDisposition(m_signalNumber, SIG_DFL);
    const int writeDescriptor = writeEnds[m_signalNumber];
    writeEnds[m_signalNumber] = -1;
    close(writeDescriptor);
    close(m_readEnd);
}

void SignalWatcher::onSignal(int signalNumber)
{
    // Only async-signal-safe calls here.
    const int savedErrno = errno;
    arrivals[signalNumber] = arrivals[signalNumber] + 1;
    if (arrivals[signalNumber] >= catchLimits[signalNumber])
        signal(signalNumber, SIG_DFL);
    const char byte = 1;
    // A failed write changes nothing: the pipe can only be full of bytes that tell the same.
    if (writeEnds[signalNumber] >= 0) {
        [[maybe_unused]] const ssize_t written = write(writeEnds[signalNumber], &byte, 1);
    }
    errno = savedErrno;
}

void SignalWatcher::drainPipe()
{
    char bytes[16];
    ssize_t count = 0;
    while ((count = read(m_readEnd, bytes, sizeof bytes)) > 0) {
        for (ssize_t i = 0; i < count && m_delivered < m_catches; ++i)
            emit received(++m_delivered);
    }
    if (m_delivered >= m_catches)
        m_notifier->setEnabled(false);
}

} // namespace Platform
