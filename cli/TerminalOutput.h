// SPDX-License-Identifier: GPL-3.0-or-later
// The program's two output streams as a terminal user sees them: messages on standard error, a
// status line (the progress bar) drawn and redrawn in place on standard error while it is a
// terminal, and, when standard output is the same terminal, console lines passed through a relay
// that lifts the status line out of their way and puts it back after them.
// Main thread, apart from the relay's own thread, which only this class runs.
#pragma once

#include "platform/foundation/StandardOutputRelay.h"

#include <QByteArray>
#include <QString>

#include <mutex>

namespace Ondrilet {

class TerminalOutput
{
public:
    TerminalOutput();
    // Stops the relay, passing on what it still holds.
    ~TerminalOutput();
    TerminalOutput(const TerminalOutput&) = delete;
    TerminalOutput& operator=(const TerminalOutput&) = delete;

    // A status line is drawn only where standard error is a terminal.
    bool drawsStatusLine() const { return m_errorIsTerminal; }
    // The terminal's width, or 80 when it does not say.
    int columns() const;

    // From now on Qt's messages (the log handles among them) are written by this object, so that
    // none lands inside the status line. The destructor gives them back.
    void takeOverQtMessages();

    // Takes standard output over while both streams are terminals; otherwise does nothing.
    void startRelay();
    void stopRelay();

    void setStatusLine(const QString& line);
    void clearStatusLine();

    // `text` and a line feed unless it ends with one, on standard error, below no status line.
    void writeError(const QString& text);
    // `text` as it is on standard output (through the relay while it runs).
    static void writeOutput(const QString& text);

private:
    void relayChunk(const char* data, qsizetype size);
    void writeErrorBytes(const QByteArray& bytes);
    void drawLocked();
    void eraseLocked();

    bool m_errorIsTerminal = false;
    bool m_ownsQtMessages = false;
    std::mutex m_mutex;
    QByteArray m_statusLine; // guarded by m_mutex
    bool m_statusShown = false;
    bool m_atLineStart = true; // of the relayed output
    // Last, so that it stops (passing on what it holds) while the members above still exist.
    Platform::StandardOutputRelay m_relay;
};

} // namespace Ondrilet
