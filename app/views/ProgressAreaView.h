// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's own progress area: the heartbeat dot, the bar of the run's progress in the
// program's violet, and the status message, all as the converter publishes them. GUI thread only.
#pragma once

#include <QColor>
#include <QWidget>

class QProgressBar;
class QToolButton;

namespace Ondrilet {

class ElidedLabel;
class HeartbeatDot;
class MediaConverter;

class ProgressAreaView : public QWidget
{
    Q_OBJECT

public:
    // The bar's tint: red 0.42, green 0.25, blue 0.75.
    static QColor barTint();
    // The bar counts in thousandths of the whole.
    static constexpr int barMaximum = 1000;

    explicit ProgressAreaView(MediaConverter* converter, QWidget* parent = nullptr);

    HeartbeatDot* heartbeatDot() const { return m_dot; }
    QProgressBar* progressBar() const { return m_bar; }
    ElidedLabel* statusLabel() const { return m_status; }
    // "Show Details": opens the window with the conversion's and the batch's detailed progress.
    QToolButton* detailsButton() const { return m_details; }

    void refresh();

signals:
    void showDetailsRequested();

private:
    MediaConverter* m_converter = nullptr;
    HeartbeatDot* m_dot = nullptr;
    QProgressBar* m_bar = nullptr;
    ElidedLabel* m_status = nullptr;
    QToolButton* m_details = nullptr;
};

} // namespace Ondrilet
