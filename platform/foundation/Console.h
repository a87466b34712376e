// SPDX-License-Identifier: GPL-3.0-or-later
// Console lines: one whole line per call on standard output, never interleaved between threads.
// The program's console lines are part of its behaviour, so tests can record them. Any thread.
#pragma once

#include <QString>
#include <QStringList>

namespace Platform {

class Console
{
public:
    // Writes `line` and a line feed to standard output as one unit, then flushes.
    static void print(const QString& line);

    // While a Recorder lives, every printed line is also kept in it (lines still reach standard
    // output). Recorders may nest; each keeps the lines printed during its own life.
    class Recorder
    {
    public:
        Recorder();
        ~Recorder();
        Recorder(const Recorder&) = delete;
        Recorder& operator=(const Recorder&) = delete;

        QStringList lines() const;

    private:
        friend class Console;
        void append(const QString& line);
        QStringList m_lines;
    };
};

} // namespace Platform
