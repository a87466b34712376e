// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/TerminalOutput.h"

#include "platform/foundation/TerminalStreams.h"

#include <QtGlobal>

#include <cstdio>

namespace Ondrilet {

using Platform::TerminalStreams;

namespace {

const QByteArray eraseLine = QByteArrayLiteral("\r\033[K");

void writeAll(TerminalStreams::Stream stream, const QByteArray& bytes)
{
    TerminalStreams::writeAll(stream, bytes.constData(), bytes.size());
}

TerminalOutput* messageWriter = nullptr;

void writeQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    const QString text = qFormatLogMessage(type, context, message);
    if (messageWriter) {
        messageWriter->writeError(text);
    } else {
        writeAll(TerminalStreams::Stream::error, text.toUtf8() + '\n');
    }
}

} // namespace

TerminalOutput::TerminalOutput()
    : m_errorIsTerminal(TerminalStreams::isTerminal(TerminalStreams::Stream::error))
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
    const int width = TerminalStreams::errorColumns();
    return width > 0 ? width : 80;
}

void TerminalOutput::startRelay()
{
    if (m_relay.isRunning() || !m_errorIsTerminal ||
        !TerminalStreams::isTerminal(TerminalStreams::Stream::output))
        return;
    m_relay.start([this](const char* data, qsizetype size) { relayChunk(data, size); });
}

void TerminalOutput::stopRelay()
{
    m_relay.stop();
}

void TerminalOutput::relayChunk(const char* data, qsizetype size)
{
    const std::lock_guard lock(m_mutex);
    eraseLocked();
    m_relay.writeToOutput(data, size);
    m_atLineStart = data[size - 1] == '\n';
    drawLocked();
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
    writeAll(TerminalStreams::Stream::error, bytes);
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
    writeAll(TerminalStreams::Stream::error, eraseLine + m_statusLine);
    m_statusShown = true;
}

void TerminalOutput::eraseLocked()
{
    if (!m_statusShown)
        return;
    writeAll(TerminalStreams::Stream::error, eraseLine);
    m_statusShown = false;
}

} // namespace Ondrilet
