// SPDX-License-Identifier: GPL-3.0-or-later
// A tracker's bar and message in one of two forms: compact, a row, or full, a column.
// GUI thread only.
#pragma once

#include <QWidget>

class QBoxLayout;
class QLabel;
class QProgressBar;

namespace ConversionEngine {
class EnhancedProgressTracker;
}

namespace Ondrilet {

class ElidedLabel;

class ProgressIndicatorView : public QWidget
{
    Q_OBJECT

public:
    ProgressIndicatorView(ConversionEngine::EnhancedProgressTracker* tracker, bool compact,
                          QWidget* parent = nullptr);

    QProgressBar* progressBar() const { return m_bar; }
    ElidedLabel* messageLabel() const { return m_message; }
    QBoxLayout* boxLayout() const { return m_layout; }

private:
    void refresh();

    ConversionEngine::EnhancedProgressTracker* m_tracker = nullptr;
    bool m_compact = false;
    QProgressBar* m_bar = nullptr;
    ElidedLabel* m_message = nullptr;
    QBoxLayout* m_layout = nullptr;
};

} // namespace Ondrilet
