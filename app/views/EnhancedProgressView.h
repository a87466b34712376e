// SPDX-License-Identifier: GPL-3.0-or-later
// "Enhanced Progress Tracking": the LIVE mark that pulses with the tracker's heartbeat, the bar
// and its percentage, the phase in its colour, the ETA while one is known, the detailed metrics
// behind a Show / Hide Details toggle, and Cancel. It reads an EnhancedProgressTracker and calls
// only its requestCancellation. GUI thread only.
#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;
class QToolButton;

namespace ConversionEngine {
class EnhancedProgressTracker;
}

namespace Ondrilet {

class HeartbeatDot;
class MetricCard;

class EnhancedProgressView : public QWidget
{
    Q_OBJECT

public:
    explicit EnhancedProgressView(ConversionEngine::EnhancedProgressTracker* tracker,
                                  QWidget* parent = nullptr);

    HeartbeatDot* liveDot() const { return m_dot; }
    QLabel* percentLabel() const { return m_percent; }
    QLabel* phaseLabel() const { return m_phase; }
    QLabel* etaLabel() const { return m_eta; }
    QToolButton* detailsToggle() const { return m_toggle; }
    QWidget* detailsSection() const { return m_details; }
    QList<MetricCard*> metricCards() const { return m_cards; }
    QPushButton* cancelButton() const { return m_cancel; }
    bool showingDetails() const { return m_showingDetails; }

protected:
    void changeEvent(QEvent* event) override;

private:
    void refresh();
    void setShowingDetails(bool show);

    ConversionEngine::EnhancedProgressTracker* m_tracker = nullptr;
    HeartbeatDot* m_dot = nullptr;
    QProgressBar* m_bar = nullptr;
    QLabel* m_percent = nullptr;
    QLabel* m_phase = nullptr;
    QLabel* m_eta = nullptr;
    QToolButton* m_toggle = nullptr;
    QWidget* m_details = nullptr;
    QList<MetricCard*> m_cards;
    QPushButton* m_cancel = nullptr;
    bool m_showingDetails = false;
};

} // namespace Ondrilet
