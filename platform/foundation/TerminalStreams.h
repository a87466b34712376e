// SPDX-License-Identifier: GPL-3.0-or-later
// The process's standard output and standard error at the level of the terminal: whether each
// is one, how wide the terminal is, and writes that are neither buffered nor cut short by a
// signal. Any thread.
#pragma once

#include <QtGlobal>

namespace Platform {

class TerminalStreams
{
public:
    TerminalStreams() = delete;

    enum class Stream
    {
        output,
        error,
    };

    static bool isTerminal(Stream stream);
    // The width of the terminal behind standard error, or 0 when it does not say.
    static int errorColumns();
    // Writes every byte, unbuffered; a stream that fails loses the rest.
    static void writeAll(Stream stream, const char* data, qsizetype size);
    // The same for any open descriptor (the relay's copy of the terminal, say).
    static void writeAll(int descriptor, const char* data, qsizetype size);
};

} // namespace Platform
