// SPDX-License-Identifier: GPL-3.0-or-later
// The "Output" section: the output directory with "Change..", the directory panel it opens,
// and the "Output Preview" of the first file's output name. GUI thread only.
#pragma once

#include "app/views/SectionView.h"

#include <QFileDialog>
#include <QPointer>

class QLabel;
class QPushButton;

namespace Ondrilet {

class ContentViewModel;
class ElidedLabel;

class OutputView : public SectionView
{
    Q_OBJECT

public:
    explicit OutputView(ContentViewModel* model, QWidget* parent = nullptr);

    ElidedLabel* directoryLabel() const { return m_directory; }
    QPushButton* changeButton() const { return m_change; }
    QLabel* previewLabel() const { return m_preview; }
    // The directory panel while it is open.
    QFileDialog* directoryPanel() const { return m_panel; }

    void refresh();

private:
    void showDirectoryPanel();

    ContentViewModel* m_model = nullptr;
    ElidedLabel* m_directory = nullptr;
    QPushButton* m_change = nullptr;
    QLabel* m_preview = nullptr;
    QPointer<QFileDialog> m_panel;
};

} // namespace Ondrilet
