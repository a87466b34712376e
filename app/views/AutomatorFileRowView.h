// SPDX-License-Identifier: GPL-3.0-or-later
// One row of the file list: the file's symbol in its colour, its name, and a remove button. A row
// can be dragged onto another to move it there; it offers its index as text, and a row takes a
// drop only of text that is not a list of files. GUI thread only.
#pragma once

#include <QMimeData>
#include <QPoint>
#include <QString>
#include <QWidget>

#include <functional>
#include <memory>

class QLabel;
class QToolButton;

namespace Ondrilet {

class ElidedLabel;

class AutomatorFileRowView : public QWidget
{
    Q_OBJECT

public:
    // A row dropped on this one: what the dragged row offered, and this row's index.
    using DropHandler = std::function<void(const QString& draggedText, qint64 destinationIndex)>;

    AutomatorFileRowView(QString file, qint64 index, bool isLast, std::function<void()> onRemove,
                         DropHandler onDrop, QWidget* parent = nullptr);

    QString file() const { return m_file; }
    qint64 index() const { return m_index; }
    bool isLast() const { return m_isLast; }
    bool isHovered() const { return m_isHovered; }
    bool isDragging() const { return m_isDragging; }
    bool isDropTarget() const { return m_isDropTarget; }
    bool isSelected() const { return m_isSelected; }
    void setSelected(bool selected);

    // What a drag of this row carries: its index as plain text.
    std::unique_ptr<QMimeData> dragMimeData() const;
    // Whether a drag carrying `data` may be dropped on a row.
    static bool acceptsDrop(const QMimeData* offered);

    // The colour of the row's symbol, after the name the file list gives it.
    static QColor symbolColour(const QString& colourName, const QPalette& palette);

    QToolButton* removeButton() const { return m_removeButton; }

signals:
    // A click on the row; `modifiers` tell whether it adds to the selection.
    void clicked(Qt::KeyboardModifiers modifiers);

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void startDrag();
    void refreshIcon();

    QString m_file;
    qint64 m_index = 0;
    bool m_isLast = false;
    std::function<void()> m_onRemove;
    DropHandler m_onDrop;
    bool m_isHovered = false;
    bool m_isDragging = false;
    bool m_isDropTarget = false;
    bool m_isSelected = false;
    QPoint m_pressPosition;
    bool m_pressed = false;

    QLabel* m_icon = nullptr;
    ElidedLabel* m_name = nullptr;
    QToolButton* m_removeButton = nullptr;
};

} // namespace Ondrilet
