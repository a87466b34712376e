// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/TerminalStreams.h"

#include <cerrno>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Platform {

namespace {

int descriptorOf(TerminalStreams::Stream stream)
{
    return stream == TerminalStreams::Stream::output ? STDOUT_FILENO : STDERR_FILENO;
}

} // namespace

bool TerminalStreams::isTerminal(Stream stream)
{
    return ::isatty(descriptorOf(stream)) == 1;
}

int TerminalStreams::errorColumns()
{
    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0)
        return size.ws_col;
    return 0;
}

void TerminalStreams::writeAll(Stream stream, const char* data, qsizetype size)
{
    writeAll(descriptorOf(stream), data, size);
}

void TerminalStreams::writeAll(int descriptor, const char* data, qsizetype size)
{
    while (size > 0) {
        const ssize_t written = ::write(descriptor, data, size_t(size));
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return;
        }
        data += written;
        size -= written;
    }
}

} // namespace Platform
