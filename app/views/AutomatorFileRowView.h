// SPDX-License-Identifier: GPL-3.0-or-later
// One row of the file list, painted: the file's symbol in its colour, its name, and a remove
// button; a faint fill while hovered or selected, an outline while another row is dragged onto
// it, a veil while it is itself dragged. The list view tells which rows those are. GUI thread only.
#pragma once

#include <QColor>
#include <QHash>
#include <QPixmap>
#include <QStyledItemDelegate>

namespace Ondrilet {

class AutomatorFileRowView : public QStyledItemDelegate
{
    Q_OBJECT

public:
    static constexpr int rowHeight = 36;

    explicit AutomatorFileRowView(QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    // The remove button's tool tip over the button, the file's path elsewhere.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

    // Where a row drawn in `rowRect` has its remove button.
    static QRect removeButtonRect(const QRect& rowRect);

    // The row another row is dragged over (-1 for none), and the row being dragged.
    int dropTargetRow() const { return m_dropTargetRow; }
    void setDropTargetRow(int row) { m_dropTargetRow = row; }
    int draggedRow() const { return m_draggedRow; }
    void setDraggedRow(int row) { m_draggedRow = row; }

    // The colour of a row's symbol, after the name the file list gives it.
    static QColor symbolColour(const QString& colourName, const QPalette& palette);

private:
    QPixmap symbolPixmap(const QString& symbol, const QColor& colour, qreal ratio) const;

    int m_dropTargetRow = -1;
    int m_draggedRow = -1;
    // Symbols drawn once per colour and pixel ratio: painting a row is then a copy.
    mutable QHash<QString, QPixmap> m_symbols;
};

} // namespace Ondrilet
