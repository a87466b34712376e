// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/ProgressAreaView.h"

#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "app/driver/MediaConverter.h"
#include "app/views/ElidedLabel.h"
#include "app/views/HeartbeatDot.h"

#include <QHBoxLayout>
#include <QProgressBar>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace Ondrilet {

QColor ProgressAreaView::barTint()
{
    return QColor::fromRgbF(0.42f, 0.25f, 0.75f);
}

ProgressAreaView::ProgressAreaView(MediaConverter* converter, QWidget* parent)
    : QWidget(parent)
    , m_converter(converter)
    , m_dot(new HeartbeatDot(this))
    , m_bar(new QProgressBar(this))
    , m_status(new ElidedLabel(this, Qt::ElideRight))
    , m_details(new QToolButton(this))
{
    m_details->setText(QStringLiteral("Show Details"));
    m_details->setAutoRaise(true);
    m_details->setToolTip(QStringLiteral("Show the progress of every file, speed, memory and ETA"));
    connect(m_details, &QToolButton::clicked, this, &ProgressAreaView::showDetailsRequested);
    m_bar->setRange(0, barMaximum);
    m_bar->setTextVisible(false);
    m_bar->setFixedHeight(8);
    m_bar->setMinimumWidth(160);
    m_bar->setAccessibleName(QStringLiteral("Conversion progress"));
    QPalette barPalette = m_bar->palette();
    barPalette.setColor(QPalette::Highlight, barTint());
    m_bar->setPalette(barPalette);
    m_status->setAccessibleDescription(QStringLiteral("Conversion status"));

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addWidget(m_dot);
    layout->addWidget(m_bar, 2);
    layout->addWidget(m_status, 3);
    layout->addWidget(m_details);

    connect(converter, &MediaConverter::progressChanged, this, &ProgressAreaView::refresh);
    connect(converter, &MediaConverter::progressMessageChanged, this, &ProgressAreaView::refresh);
    ConversionEngine::EnhancedProgressTracker* tracker = converter->enhancedProgressTracker();
    connect(tracker, &ConversionEngine::EnhancedProgressTracker::heartbeatActiveChanged, m_dot,
            &HeartbeatDot::setBeating);
    m_dot->setBeating(tracker->heartbeatActive());
    refresh();
}

void ProgressAreaView::refresh()
{
    const double fraction = std::clamp(m_converter->progress(), 0.0, 1.0);
    m_bar->setValue(int(std::lround(fraction * barMaximum)));
    m_status->setFullText(m_converter->progressMessage());
}

} // namespace Ondrilet
