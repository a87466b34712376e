// SPDX-License-Identifier: GPL-3.0-or-later
// Shows a running conversion on the terminal: ten times a second it draws the driver's overall
// fraction, the batch's remaining time and the status text as the status line of
// TerminalOutput. Draws nothing where standard error is not a terminal. Main thread only.
#pragma once

#include <QObject>

class QTimer;

namespace Ondrilet {

class MediaConverter;
class TerminalOutput;

class ProgressDisplay : public QObject
{
    Q_OBJECT

public:
    static constexpr int redrawIntervalMilliseconds = 100;

    // Both must outlive this object.
    ProgressDisplay(MediaConverter* converter, TerminalOutput* terminal, QObject* parent = nullptr);

    void start();
    // Takes the line away; the console lines stay. A closing text takes the line's place for
    // good, on terminals only.
    void stop(const QString& closingText = QString());

private:
    void redraw();

    MediaConverter* m_converter = nullptr;
    TerminalOutput* m_terminal = nullptr;
    QTimer* m_timer = nullptr;
};

} // namespace Ondrilet
