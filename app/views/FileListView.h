// SPDX-License-Identifier: GPL-3.0-or-later
// The left column's file list: the title with Add, the rows in list order (or an invitation to
// drop files while the list is empty), the count and Clear. The rows are a list view over the
// model's file list, painted by AutomatorFileRowView. Files dropped from a file manager anywhere
// on it go to the model; rows are selected by click and removed with Delete. GUI thread only.
#pragma once

#include <QList>
#include <QWidget>

class QLabel;
class QListView;
class QPushButton;

namespace Ondrilet {

class AutomatorFileRowView;
class ContentViewModel;

class FileListView : public QWidget
{
    Q_OBJECT

public:
    explicit FileListView(ContentViewModel* model, QWidget* parent = nullptr);

    QListView* rowsView() const { return m_rows; }
    AutomatorFileRowView* rowDelegate() const { return m_rowDelegate; }
    QPushButton* addButton() const { return m_addButton; }
    QPushButton* clearButton() const { return m_clearButton; }
    QLabel* countLabel() const { return m_countLabel; }
    // The indices of the selected rows, in list order.
    QList<qint64> selectedIndices() const;

    // Removes the selected rows' files.
    void removeSelected();

signals:
    // The Add button: the window opens the file panel.
    void addRequested();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void refreshCount();

    ContentViewModel* m_model = nullptr;
    QPushButton* m_addButton = nullptr;
    QPushButton* m_clearButton = nullptr;
    QLabel* m_countLabel = nullptr;
    QListView* m_rows = nullptr;
    AutomatorFileRowView* m_rowDelegate = nullptr;
    QWidget* m_emptyState = nullptr;
};

} // namespace Ondrilet
