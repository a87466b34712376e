// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/StandardOutputRelay.h"

#include "platform/foundation/TerminalStreams.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace Platform {

StandardOutputRelay::~StandardOutputRelay()
{
    stop();
}

bool StandardOutputRelay::start(Sink sink)
{
    if (isRunning())
        return true;
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return false;
    std::fflush(stdout);
    m_realOutput = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
    if (m_realOutput < 0 || ::dup2(ends[1], STDOUT_FILENO) < 0) {
        ::close(ends[0]);
        ::close(ends[1]);
        if (m_realOutput >= 0)
            ::close(m_realOutput);
        m_realOutput = -1;
        return false;
    }
    ::close(ends[1]);
    m_thread =
        std::thread([this, readEnd = ends[0], sink = std::move(sink)] { run(readEnd, sink); });
    return true;
}

void StandardOutputRelay::stop()
{
    if (!isRunning())
        return;
    std::fflush(stdout);
    // Giving standard output back closes the pipe's last writer: the relay reads to its end.
    ::dup2(m_realOutput, STDOUT_FILENO);
    m_thread.join();
    ::close(m_realOutput);
    m_realOutput = -1;
}

void StandardOutputRelay::writeToOutput(const char* data, qsizetype size) const
{
    TerminalStreams::writeAll(m_realOutput, data, size);
}

void StandardOutputRelay::run(int readEnd, const Sink& sink)
{
    char buffer[4096];
    for (;;) {
        const ssize_t count = ::read(readEnd, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        sink(buffer, count);
    }
    ::close(readEnd);
}

} // namespace Platform
