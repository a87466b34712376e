// SPDX-License-Identifier: GPL-3.0-or-later
// The left column's file list: the title with Add, the rows in list order (or an invitation to
// drop files while the list is empty), the count and Clear. Files dropped from a file manager
// anywhere on it go to the model; rows are selected by click and removed with Delete.
// GUI thread only.
#pragma once

#include <QList>
#include <QSet>
#include <QStringList>
#include <QWidget>

class QLabel;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

namespace Ondrilet {

class AutomatorFileRowView;
class ContentViewModel;

class FileListView : public QWidget
{
    Q_OBJECT

public:
    explicit FileListView(ContentViewModel* model, QWidget* parent = nullptr);

    QList<AutomatorFileRowView*> rows() const { return m_rows; }
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
    void rebuildRows(const QStringList& files);
    void selectRow(qint64 index, Qt::KeyboardModifiers modifiers);
    void moveCurrent(int step);
    void refreshSelection();

    ContentViewModel* m_model = nullptr;
    QPushButton* m_addButton = nullptr;
    QPushButton* m_clearButton = nullptr;
    QLabel* m_countLabel = nullptr;
    QWidget* m_frame = nullptr;
    QScrollArea* m_scroll = nullptr;
    QWidget* m_rowsHost = nullptr;
    QVBoxLayout* m_rowsLayout = nullptr;
    QWidget* m_emptyState = nullptr;
    QList<AutomatorFileRowView*> m_rows;
    QSet<qint64> m_selected;
    qint64 m_current = -1;
};

} // namespace Ondrilet
