// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/AutomatorFileRowView.h"

#include "app/views/AppearancePalette.h"
#include "app/views/SymbolIcon.h"
#include "app/window/FileListModel.h"

#include <QAbstractItemView>
#include <QCursor>
#include <QHelpEvent>
#include <QIcon>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

namespace Ondrilet {

namespace {

// The row's parts, left to right: the symbol, the name, the remove button.
constexpr int leftMargin = 10;
constexpr int rightMargin = 6;
constexpr int spacing = 8;
constexpr int symbolSide = 20;
constexpr int removeSide = 22;
constexpr int removeIconSide = 14;

QColor withAlpha(QColor colour, qreal alpha)
{
    colour.setAlphaF(alpha);
    return colour;
}

} // namespace

AutomatorFileRowView::AutomatorFileRowView(QObject* parent)
    : QStyledItemDelegate(parent)
{}

QRect AutomatorFileRowView::removeButtonRect(const QRect& rowRect)
{
    return QRect(rowRect.right() + 1 - rightMargin - removeSide,
                 rowRect.top() + (rowRect.height() - removeSide) / 2, removeSide, removeSide);
}

QColor AutomatorFileRowView::symbolColour(const QString& colourName, const QPalette& palette)
{
    const bool dark = AppearancePalette::isDark(palette);
    if (colourName == QLatin1String("blue"))
        return dark ? QColor(0x4c, 0x9a, 0xff) : QColor(0x1f, 0x6f, 0xeb);
    if (colourName == QLatin1String("orange"))
        return dark ? QColor(0xff, 0xa0, 0x3a) : QColor(0xe8, 0x7b, 0x0c);
    if (colourName == QLatin1String("red"))
        return dark ? QColor(0xff, 0x6b, 0x6b) : QColor(0xd7, 0x37, 0x37);
    if (colourName == QLatin1String("green"))
        return dark ? QColor(0x4c, 0xd9, 0x7b) : QColor(0x24, 0x9a, 0x4b);
    return AppearancePalette::secondaryText(palette);
}

QSize AutomatorFileRowView::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const
{
    // The list gives every row its whole width; this is only the least a row needs.
    return QSize(leftMargin + symbolSide + spacing + removeSide + rightMargin, rowHeight);
}

QPixmap AutomatorFileRowView::symbolPixmap(const QString& symbol, const QColor& colour,
                                           qreal ratio) const
{
    const QString key = symbol + QLatin1Char('|') + QString::number(colour.rgba(), 16) +
                        QLatin1Char('|') + QString::number(ratio);
    auto found = m_symbols.constFind(key);
    if (found != m_symbols.constEnd())
        return *found;
    const int side = symbol == QLatin1String("xmark") ? removeIconSide : symbolSide;
    const QPixmap pixmap = SymbolIcon::icon(symbol, colour).pixmap(QSize(side, side), ratio);
    m_symbols.insert(key, pixmap);
    return pixmap;
}

void AutomatorFileRowView::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const
{
    const QPalette& colours = option.palette;
    const QWidget* view = option.widget;
    const QRect row = option.rect;
    const bool selected = option.state & QStyle::State_Selected;
    const bool hovered = option.state & QStyle::State_MouseOver;
    const bool dragging = index.row() == m_draggedRow;
    const bool dropTarget = index.row() == m_dropTargetRow;
    const bool isLast = index.data(FileListModel::isLastRole).toBool();

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    QPainterPath shape;
    shape.addRoundedRect(QRectF(row).adjusted(2, 1, -2, -1), 6, 6);

    const QColor highlight = colours.color(QPalette::Highlight);
    if (selected) {
        const bool focused = view != nullptr && view->hasFocus();
        painter->fillPath(shape, withAlpha(highlight, focused ? 0.22 : 0.16));
    } else if (hovered && m_draggedRow < 0) {
        painter->fillPath(shape, withAlpha(colours.color(QPalette::WindowText), 0.06));
    }
    if (dropTarget) {
        painter->setPen(QPen(highlight, 2));
        painter->drawPath(shape);
        painter->fillPath(shape, withAlpha(highlight, 0.10));
    }
    if (!isLast && !selected && !dropTarget) {
        painter->setPen(QPen(withAlpha(colours.color(QPalette::WindowText), 0.08), 1));
        const qreal y = row.bottom() + 0.5;
        painter->drawLine(QPointF(row.left() + leftMargin + symbolSide + spacing, y),
                          QPointF(row.right() + 1 - 8, y));
    }

    const qreal ratio = painter->device() != nullptr ? painter->device()->devicePixelRatioF() : 1.0;
    const QColor symbolTint =
        symbolColour(index.data(FileListModel::symbolColourRole).toString(), colours);
    const QRect symbolRect(row.left() + leftMargin, row.top() + (row.height() - symbolSide) / 2,
                           symbolSide, symbolSide);
    painter->drawPixmap(
        symbolRect,
        symbolPixmap(index.data(FileListModel::symbolNameRole).toString(), symbolTint, ratio));

    const QRect remove = removeButtonRect(row);
    const auto* itemView = qobject_cast<const QAbstractItemView*>(view);
    const QWidget* area = itemView != nullptr ? itemView->viewport() : view;
    if (hovered && area != nullptr && remove.contains(area->mapFromGlobal(QCursor::pos()))) {
        QPainterPath button;
        button.addRoundedRect(QRectF(remove).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
        painter->fillPath(button, withAlpha(colours.color(QPalette::WindowText), 0.10));
    }
    const QRect cross(remove.left() + (removeSide - removeIconSide) / 2,
                      remove.top() + (removeSide - removeIconSide) / 2, removeIconSide,
                      removeIconSide);
    painter->drawPixmap(cross, symbolPixmap(QStringLiteral("xmark"),
                                            AppearancePalette::secondaryText(colours), ratio));

    const int nameLeft = symbolRect.right() + 1 + spacing;
    const QRect nameRect(nameLeft, row.top(), remove.left() - spacing - nameLeft, row.height());
    const QString name = index.data(Qt::DisplayRole).toString();
    painter->setFont(option.font);
    painter->setPen(colours.color(QPalette::WindowText));
    painter->drawText(
        nameRect, Qt::AlignLeft | Qt::AlignVCenter,
        option.fontMetrics.elidedText(name, Qt::ElideMiddle, std::max(0, nameRect.width())));

    if (dragging)
        painter->fillPath(shape, withAlpha(colours.color(QPalette::Base), 0.55));
    painter->restore();
}

bool AutomatorFileRowView::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                     const QStyleOptionViewItem& option, const QModelIndex& index)
{
    if (event == nullptr || view == nullptr || event->type() != QEvent::ToolTip)
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const QString text = removeButtonRect(option.rect).contains(event->pos())
                             ? QStringLiteral("Remove")
                             : index.data(Qt::ToolTipRole).toString();
    QToolTip::showText(event->globalPos(), text, view);
    return true;
}

} // namespace Ondrilet
