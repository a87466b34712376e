// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ProgressDisplay.h"

#include "app/batch/BatchProgressManager.h"
#include "app/driver/MediaConverter.h"
#include "cli/ProgressBarText.h"
#include "cli/TerminalOutput.h"

#include <QTimer>

namespace Ondrilet {

ProgressDisplay::ProgressDisplay(MediaConverter* converter, TerminalOutput* terminal,
                                 QObject* parent)
    : QObject(parent)
    , m_converter(converter)
    , m_terminal(terminal)
    , m_timer(new QTimer(this))
{
    m_timer->setInterval(redrawIntervalMilliseconds);
    connect(m_timer, &QTimer::timeout, this, &ProgressDisplay::redraw);
}

void ProgressDisplay::start()
{
    if (!m_terminal->drawsStatusLine())
        return;
    redraw();
    m_timer->start();
}

void ProgressDisplay::stop(const QString& closingText)
{
    const bool wasRunning = m_timer->isActive();
    m_timer->stop();
    m_terminal->clearStatusLine();
    if (wasRunning && !closingText.isEmpty())
        m_terminal->writeError(closingText);
}

void ProgressDisplay::redraw()
{
    const BatchConversionStats stats = m_converter->batchProgressManager()->batchStats();
    m_terminal->setStatusLine(
        ProgressBarText::render(m_converter->progress(), stats.overallTimeRemaining,
                                m_converter->progressMessage(), m_terminal->columns()));
}

} // namespace Ondrilet
