// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/EnhancedProgressView.h"

#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "app/batch/DurationText.h"
#include "app/batch/ProgressTexts.h"
#include "app/views/HeartbeatDot.h"
#include "app/views/MetricCard.h"
#include "app/views/NamedColours.h"
#include "app/views/SecondaryLabel.h"
#include "app/views/SymbolIcon.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace Ondrilet {

namespace {

constexpr int barMaximum = 1000;

} // namespace

EnhancedProgressView::EnhancedProgressView(ConversionEngine::EnhancedProgressTracker* tracker,
                                           QWidget* parent)
    : QWidget(parent)
    , m_tracker(tracker)
{
    setAccessibleName(QStringLiteral("Enhanced Progress Tracking"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setSpacing(10);

    auto* header = new QHBoxLayout;
    header->setSpacing(8);
    auto* title = new QLabel(QStringLiteral("Enhanced Progress Tracking"), this);
    QFont titleFont = title->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.15);
    title->setFont(titleFont);
    header->addWidget(title, 1);
    m_dot = new HeartbeatDot(this);
    m_dot->setAccessibleName(QStringLiteral("LIVE"));
    header->addWidget(m_dot);
    auto* live = new QLabel(QStringLiteral("LIVE"), this);
    QFont liveFont = live->font();
    liveFont.setBold(true);
    liveFont.setPointSizeF(liveFont.pointSizeF() * 0.85);
    live->setFont(liveFont);
    header->addWidget(live);
    layout->addLayout(header);

    auto* barRow = new QHBoxLayout;
    barRow->setSpacing(8);
    m_bar = new QProgressBar(this);
    m_bar->setRange(0, barMaximum);
    m_bar->setTextVisible(false);
    m_bar->setFixedHeight(8);
    m_bar->setAccessibleName(QStringLiteral("Conversion progress"));
    m_percent = new QLabel(this);
    m_percent->setMinimumWidth(m_percent->fontMetrics().horizontalAdvance(QStringLiteral("100%")));
    m_percent->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    barRow->addWidget(m_bar, 1);
    barRow->addWidget(m_percent);
    layout->addLayout(barRow);

    auto* phaseRow = new QHBoxLayout;
    phaseRow->setSpacing(6);
    phaseRow->addWidget(new SecondaryLabel(QStringLiteral("Phase:"), this));
    m_phase = new QLabel(this);
    QFont phaseFont = m_phase->font();
    phaseFont.setBold(true);
    m_phase->setFont(phaseFont);
    phaseRow->addWidget(m_phase);
    phaseRow->addStretch(1);
    m_eta = new SecondaryLabel(QString(), this);
    phaseRow->addWidget(m_eta);
    layout->addLayout(phaseRow);

    m_toggle = new QToolButton(this);
    m_toggle->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_toggle->setAutoRaise(true);
    layout->addWidget(m_toggle, 0, Qt::AlignLeft);

    m_details = new QWidget(this);
    auto* detailsLayout = new QVBoxLayout(m_details);
    detailsLayout->setContentsMargins(0, 0, 0, 0);
    detailsLayout->setSpacing(8);
    auto* detailsHeader = new QHBoxLayout;
    detailsHeader->setSpacing(6);
    auto* chartIcon = new QLabel(m_details);
    chartIcon->setPixmap(
        SymbolIcon::icon(QStringLiteral("chart.line.uptrend.xyaxis")).pixmap(16, 16));
    detailsHeader->addWidget(chartIcon);
    auto* detailsTitle = new QLabel(QStringLiteral("Detailed Metrics"), m_details);
    detailsTitle->setFont(phaseFont);
    detailsHeader->addWidget(detailsTitle, 1);
    detailsLayout->addLayout(detailsHeader);
    auto* cards = new QGridLayout;
    cards->setSpacing(8);
    m_cards = {
        new MetricCard(QStringLiteral("Elapsed Time"), QStringLiteral("clock"), m_details),
        new MetricCard(QStringLiteral("Progress Updates"), QString(), m_details),
        new MetricCard(QStringLiteral("Stagnation Events"), QString(), m_details),
        new MetricCard(QStringLiteral("Phase Time"), QStringLiteral("timer"), m_details),
    };
    for (int i = 0; i < m_cards.size(); ++i) {
        cards->addWidget(m_cards[i], 0, i);
        cards->setColumnStretch(i, 1);
    }
    detailsLayout->addLayout(cards);
    layout->addWidget(m_details);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    m_cancel = new QPushButton(QStringLiteral("Cancel"), this);
    buttons->addWidget(m_cancel);
    layout->addLayout(buttons);
    layout->addStretch(1);

    connect(m_toggle, &QToolButton::clicked, this,
            [this] { setShowingDetails(!m_showingDetails); });
    connect(m_cancel, &QPushButton::clicked, tracker,
            &ConversionEngine::EnhancedProgressTracker::requestCancellation);
    using Tracker = ConversionEngine::EnhancedProgressTracker;
    connect(tracker, &Tracker::heartbeatActiveChanged, m_dot, &HeartbeatDot::setBeating);
    connect(tracker, &Tracker::progressChanged, this, &EnhancedProgressView::refresh);
    connect(tracker, &Tracker::currentPhaseChanged, this, &EnhancedProgressView::refresh);
    connect(tracker, &Tracker::detailedMetricsChanged, this, &EnhancedProgressView::refresh);
    // The heartbeat ticks while a conversion runs: the times move on with it.
    connect(tracker, &Tracker::heartbeatActiveChanged, this, &EnhancedProgressView::refresh);
    m_dot->setBeating(tracker->heartbeatActive());
    setShowingDetails(false);
    refresh();
}

void EnhancedProgressView::setShowingDetails(bool show)
{
    m_showingDetails = show;
    m_toggle->setText(show ? QStringLiteral("Hide Details") : QStringLiteral("Show Details"));
    m_toggle->setIcon(
        SymbolIcon::icon(show ? QStringLiteral("chevron.up") : QStringLiteral("chevron.down")));
    m_toggle->setAccessibleName(m_toggle->text());
    m_details->setVisible(show);
}

void EnhancedProgressView::refresh()
{
    const double fraction = m_tracker->progress();
    m_bar->setValue(int(std::lround(std::clamp(fraction, 0.0, 1.0) * barMaximum)));
    m_percent->setText(ProgressTexts::percentText(fraction));
    const ConversionEngine::ConversionPhase phase = m_tracker->currentPhase();
    m_phase->setText(ConversionEngine::displayName(phase));
    QPalette phasePalette = m_phase->palette();
    phasePalette.setColor(QPalette::WindowText,
                          NamedColours::phase(ProgressTexts::phaseColor(phase), palette()));
    m_phase->setPalette(phasePalette);

    const ConversionEngine::ConversionMetrics metrics = m_tracker->detailedMetrics();
    const std::optional<QString> eta = ProgressTexts::etaLine(metrics.estimatedTimeRemaining());
    m_eta->setVisible(eta.has_value());
    m_eta->setText(eta.value_or(QString()));
    m_cards[0]->setValue(durationText(metrics.elapsedTime()));
    m_cards[1]->setValue(QString::number(metrics.progressUpdates));
    m_cards[2]->setValue(QString::number(metrics.stagnationEvents));
    m_cards[3]->setValue(durationText(metrics.phaseElapsedTime()));
}

void EnhancedProgressView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_phase != nullptr)
        refresh();
}

} // namespace Ondrilet
