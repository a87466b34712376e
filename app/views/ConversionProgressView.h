// SPDX-License-Identifier: GPL-3.0-or-later
// The content of the "Conversion Progress" window: the run's detailed tracking above the batch's
// per-file progress, in one scrolling column. GUI thread only.
#pragma once

#include <QWidget>

namespace ConversionEngine {
class EnhancedProgressTracker;
}

namespace Ondrilet {

class BatchProgressManager;
class BatchProgressView;
class EnhancedProgressView;

class ConversionProgressView : public QWidget
{
    Q_OBJECT

public:
    ConversionProgressView(ConversionEngine::EnhancedProgressTracker* tracker,
                           BatchProgressManager* manager, QWidget* parent = nullptr);

    EnhancedProgressView* enhancedProgressView() const { return m_enhanced; }
    BatchProgressView* batchProgressView() const { return m_batch; }

private:
    EnhancedProgressView* m_enhanced = nullptr;
    BatchProgressView* m_batch = nullptr;
};

} // namespace Ondrilet
