// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/ProgressIndicatorView.h"

#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "app/views/ElidedLabel.h"

#include <QBoxLayout>
#include <QProgressBar>

#include <algorithm>
#include <cmath>

namespace Ondrilet {

namespace {

constexpr int barMaximum = 1000;

} // namespace

ProgressIndicatorView::ProgressIndicatorView(ConversionEngine::EnhancedProgressTracker* tracker,
                                             bool compact, QWidget* parent)
    : QWidget(parent)
    , m_tracker(tracker)
    , m_compact(compact)
    , m_bar(new QProgressBar(this))
    , m_message(new ElidedLabel(this, Qt::ElideRight))
{
    m_bar->setRange(0, barMaximum);
    m_bar->setTextVisible(false);
    m_bar->setFixedHeight(8);
    m_bar->setAccessibleName(QStringLiteral("Conversion progress"));
    m_layout = new QBoxLayout(compact ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, this);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(compact ? 8 : 6);
    m_layout->addWidget(m_bar, compact ? 2 : 0);
    m_layout->addWidget(m_message, compact ? 3 : 0);

    using Tracker = ConversionEngine::EnhancedProgressTracker;
    connect(tracker, &Tracker::progressChanged, this, &ProgressIndicatorView::refresh);
    connect(tracker, &Tracker::statusMessageChanged, this, &ProgressIndicatorView::refresh);
    refresh();
}

void ProgressIndicatorView::refresh()
{
    m_bar->setValue(int(std::lround(std::clamp(m_tracker->progress(), 0.0, 1.0) * barMaximum)));
    m_message->setFullText(m_tracker->statusMessage());
}

} // namespace Ondrilet
