// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/ConversionProgressView.h"

#include "app/views/BatchProgressView.h"
#include "app/views/EnhancedProgressView.h"

#include <QFrame>
#include <QScrollArea>
#include <QVBoxLayout>

namespace Ondrilet {

ConversionProgressView::ConversionProgressView(ConversionEngine::EnhancedProgressTracker* tracker,
                                               BatchProgressManager* manager, QWidget* parent)
    : QWidget(parent)
{
    auto* column = new QWidget;
    auto* columnLayout = new QVBoxLayout(column);
    columnLayout->setContentsMargins(0, 0, 0, 0);
    columnLayout->setSpacing(0);
    m_enhanced = new EnhancedProgressView(tracker, column);
    m_batch = new BatchProgressView(manager, column);
    auto* rule = new QFrame(column);
    rule->setFrameShape(QFrame::HLine);
    rule->setFrameShadow(QFrame::Sunken);
    columnLayout->addWidget(m_enhanced);
    columnLayout->addWidget(rule);
    columnLayout->addWidget(m_batch, 1);

    auto* scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(column);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scroll);
}

} // namespace Ondrilet
