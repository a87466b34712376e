#include "cli/TerminalOutput.h"

#include <QtGlobal>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Ondrilet {

namespace {

const QByteArray eraseLine = QByteArrayLiteral("\r\033[K");

void writeAll(int fd, const char* data, qsizetype size)
{
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size_t(size));
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return;
        }
        data += written;
        size -= written;
    }
}

TerminalOutput* messageWriter = nullptr;

void writeQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    const QString text = qFormatLogMessage(type, context, message);
    if (messageWriter) {
        messageWriter->writeError(text);
    } else {
        const QByteArray bytes = text.toUtf8() + '\n';
        writeAll(STDERR_FILENO, bytes.constData(), bytes.size());
    }
}

} // namespace

TerminalOutput::TerminalOutput()
    : m_errorIsTerminal(::isatty(STDERR_FILENO) == 1)
{}

TerminalOutput::~TerminalOutput()
{
    stopRelay();
    if (m_ownsQtMessages) {
        qInstallMessageHandler(nullptr);
        messageWriter = nullptr;
    }
}

void TerminalOutput::takeOverQtMessages()
{
    messageWriter = this;
    m_ownsQtMessages = true;
    qInstallMessageHandler(writeQtMessage);
}

int TerminalOutput::columns() const
{
    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    return 80;
}

void TerminalOutput::startRelay()
{
    if (m_relay.joinable() || !m_errorIsTerminal || ::isatty(STDOUT_FILENO) != 1)
        return;
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return;
    std::fflush(stdout);
    m_terminalOutput = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
    if (m_terminalOutput < 0 || ::dup2(ends[1], STDOUT_FILENO) < 0) {
        ::close(ends[0]);
        ::close(ends[1]);
        if (m_terminalOutput >= 0)
            ::close(m_terminalOutput);
        m_terminalOutput = -1;
        return;
    }
    ::close(ends[1]);
    m_relay = std::thread([this, readEnd = ends[0]] { relayLoop(readEnd); });
}

void TerminalOutput::stopRelay()
{
    if (!m_relay.joinable())
        return;
    std::fflush(stdout);
    // Giving standard output back closes the pipe's last writer: the relay reads to its end.
    ::dup2(m_terminalOutput, STDOUT_FILENO);
    m_relay.join();
    ::close(m_terminalOutput);
    m_terminalOutput = -1;
}

void TerminalOutput::relayLoop(int readEnd)
{
    char buffer[4096];
    for (;;) {
        const ssize_t count = ::read(readEnd, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        const std::lock_guard lock(m_mutex);
        eraseLocked();
        writeAll(m_terminalOutput, buffer, count);
        m_atLineStart = buffer[count - 1] == '\n';
        drawLocked();
    }
    ::close(readEnd);
}

void TerminalOutput::setStatusLine(const QString& line)
{
    if (!m_errorIsTerminal)
        return;
    const std::lock_guard lock(m_mutex);
    m_statusLine = line.toUtf8();
    drawLocked();
}

void TerminalOutput::clearStatusLine()
{
    const std::lock_guard lock(m_mutex);
    eraseLocked();
    m_statusLine.clear();
}

void TerminalOutput::writeError(const QString& text)
{
    QByteArray bytes = text.toUtf8();
    if (!bytes.endsWith('\n'))
        bytes.append('\n');
    writeErrorBytes(bytes);
}

void TerminalOutput::writeErrorBytes(const QByteArray& bytes)
{
    const std::lock_guard lock(m_mutex);
    eraseLocked();
    std::fflush(stderr);
    writeAll(STDERR_FILENO, bytes.constData(), bytes.size());
    drawLocked();
}

void TerminalOutput::writeOutput(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

void TerminalOutput::drawLocked()
{
    // A half-written console line keeps the cursor; the line is drawn once it is complete.
    if (m_statusLine.isEmpty() || !m_atLineStart)
        return;
    const QByteArray line = eraseLine + m_statusLine;
    writeAll(STDERR_FILENO, line.constData(), line.size());
    m_statusShown = true;
}

void TerminalOutput::eraseLocked()
{
    if (!m_statusShown)
        return;
    writeAll(STDERR_FILENO, eraseLine.constData(), eraseLine.size());
    m_statusShown = false;
}

} // namespace Ondrilet
