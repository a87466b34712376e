// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/AutomatorFileRowView.h"

#include "app/views/AppearancePalette.h"
#include "app/views/ElidedLabel.h"
#include "app/views/SymbolIcon.h"
#include "app/window/FileListRules.h"

#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QToolButton>

namespace Ondrilet {

AutomatorFileRowView::AutomatorFileRowView(QString file, qint64 index, bool isLast,
                                           std::function<void()> onRemove, DropHandler onDrop,
                                           QWidget* parent)
    : QWidget(parent)
    , m_file(std::move(file))
    , m_index(index)
    , m_isLast(isLast)
    , m_onRemove(std::move(onRemove))
    , m_onDrop(std::move(onDrop))
    , m_icon(new QLabel(this))
    , m_name(new ElidedLabel(this))
    , m_removeButton(new QToolButton(this))
{
    setAcceptDrops(true);
    setAttribute(Qt::WA_Hover);
    setMinimumHeight(36);
    const QString name = QFileInfo(m_file).fileName();
    setAccessibleName(name);
    setToolTip(m_file);

    m_icon->setFixedSize(20, 20);
    m_name->setFullText(name);
    m_removeButton->setAutoRaise(true);
    m_removeButton->setIconSize(QSize(14, 14));
    m_removeButton->setToolTip(QStringLiteral("Remove"));
    m_removeButton->setAccessibleName(QStringLiteral("Remove %1").arg(name));
    m_removeButton->setFocusPolicy(Qt::TabFocus);
    connect(m_removeButton, &QToolButton::clicked, this, [this] {
        if (m_onRemove)
            m_onRemove();
    });

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(10, 4, 6, 4);
    layout->setSpacing(8);
    layout->addWidget(m_icon);
    layout->addWidget(m_name, 1);
    layout->addWidget(m_removeButton);
    refreshIcon();
}

void AutomatorFileRowView::setSelected(bool selected)
{
    if (selected == m_isSelected)
        return;
    m_isSelected = selected;
    update();
}

std::unique_ptr<QMimeData> AutomatorFileRowView::dragMimeData() const
{
    auto mimeData = std::make_unique<QMimeData>();
    mimeData->setText(QString::number(m_index));
    return mimeData;
}

bool AutomatorFileRowView::acceptsDrop(const QMimeData* offered)
{
    // A file manager's drag often carries its paths as text too; those belong to the list.
    return offered != nullptr && offered->hasText() && !offered->hasUrls();
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

void AutomatorFileRowView::refreshIcon()
{
    const FileListRules::RowLook look = FileListRules::rowLook(m_file);
    const QColor colour = symbolColour(FileListRules::colourName(look.colour), palette());
    m_icon->setPixmap(SymbolIcon::icon(look.symbolName, colour).pixmap(QSize(20, 20)));
    m_removeButton->setIcon(
        SymbolIcon::icon(QStringLiteral("xmark"), AppearancePalette::secondaryText(palette())));
}

void AutomatorFileRowView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange)
        refreshIcon();
    QWidget::changeEvent(event);
}

void AutomatorFileRowView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colours = palette();
    const QRectF area = QRectF(rect()).adjusted(2, 1, -2, -1);
    QPainterPath shape;
    shape.addRoundedRect(area, 6, 6);

    QColor highlight = colours.color(QPalette::Highlight);
    if (m_isSelected) {
        highlight.setAlphaF(hasFocus() || parentWidget()->hasFocus() ? 0.22 : 0.16);
        painter.fillPath(shape, highlight);
    } else if (m_isHovered && !m_isDragging) {
        QColor hover = colours.color(QPalette::WindowText);
        hover.setAlphaF(0.06);
        painter.fillPath(shape, hover);
    }
    if (m_isDropTarget) {
        QColor target = colours.color(QPalette::Highlight);
        painter.setPen(QPen(target, 2));
        painter.drawPath(shape);
        target.setAlphaF(0.10);
        painter.fillPath(shape, target);
    }
    if (!m_isLast && !m_isSelected && !m_isDropTarget) {
        QColor line = colours.color(QPalette::WindowText);
        line.setAlphaF(0.08);
        painter.setPen(QPen(line, 1));
        painter.drawLine(QPointF(38, height() - 0.5), QPointF(width() - 8, height() - 0.5));
    }
    if (m_isDragging) {
        QColor veil = colours.color(QPalette::Base);
        veil.setAlphaF(0.55);
        painter.fillPath(shape, veil);
    }
}

void AutomatorFileRowView::enterEvent(QEnterEvent* event)
{
    m_isHovered = true;
    update();
    QWidget::enterEvent(event);
}

void AutomatorFileRowView::leaveEvent(QEvent* event)
{
    m_isHovered = false;
    update();
    QWidget::leaveEvent(event);
}

void AutomatorFileRowView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        m_pressed = true;
        m_pressPosition = event->position().toPoint();
    }
    QWidget::mousePressEvent(event);
}

void AutomatorFileRowView::mouseMoveEvent(QMouseEvent* event)
{
    if (m_pressed && (event->buttons() & Qt::LeftButton) &&
        (event->position().toPoint() - m_pressPosition).manhattanLength() >=
            QApplication::startDragDistance()) {
        m_pressed = false;
        startDrag();
        return;
    }
    QWidget::mouseMoveEvent(event);
}

void AutomatorFileRowView::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_pressed && event->button() == Qt::LeftButton)
        emit clicked(event->modifiers());
    m_pressed = false;
    QWidget::mouseReleaseEvent(event);
}

void AutomatorFileRowView::startDrag()
{
    QPointer<AutomatorFileRowView> self(this);
    auto* drag = new QDrag(this);
    drag->setMimeData(dragMimeData().release());
    drag->setPixmap(grab());
    drag->setHotSpot(m_pressPosition);
    m_isDragging = true;
    update();
    drag->exec(Qt::MoveAction);
    // The list may have been rebuilt while the drag ran.
    if (!self)
        return;
    m_isDragging = false;
    update();
}

void AutomatorFileRowView::dragEnterEvent(QDragEnterEvent* event)
{
    if (!acceptsDrop(event->mimeData())) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::MoveAction);
    event->accept();
    m_isDropTarget = true;
    update();
}

void AutomatorFileRowView::dragMoveEvent(QDragMoveEvent* event)
{
    if (!acceptsDrop(event->mimeData())) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::MoveAction);
    event->accept();
}

void AutomatorFileRowView::dragLeaveEvent(QDragLeaveEvent* event)
{
    m_isDropTarget = false;
    update();
    QWidget::dragLeaveEvent(event);
}

void AutomatorFileRowView::dropEvent(QDropEvent* event)
{
    m_isDropTarget = false;
    update();
    if (!acceptsDrop(event->mimeData())) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::MoveAction);
    event->accept();
    if (m_onDrop)
        m_onDrop(event->mimeData()->text(), m_index);
}

} // namespace Ondrilet
