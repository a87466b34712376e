// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/FileProgressRow.h"

#include "app/batch/ProgressTexts.h"
#include "app/views/ElidedLabel.h"
#include "app/views/NamedColours.h"
#include "app/views/SymbolIcon.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <QStylePainter>

namespace Ondrilet {

FileProgressRow::FileProgressRow(const FileConversionProgress& fileProgress, QWidget* parent)
    : QWidget(parent)
    , m_fileProgress(fileProgress)
    , m_symbol(new QLabel(this))
    , m_name(new ElidedLabel(this, Qt::ElideMiddle))
    , m_percent(new QLabel(this))
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 4, 8, 4);
    layout->setSpacing(8);
    m_symbol->setFixedSize(16, 16);
    m_percent->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_percent->setMinimumWidth(m_percent->fontMetrics().horizontalAdvance(QStringLiteral("100%")));
    layout->addWidget(m_symbol);
    layout->addWidget(m_name, 1);
    layout->addWidget(m_percent);
    refresh();
}

void FileProgressRow::setFileProgress(const FileConversionProgress& fileProgress)
{
    m_fileProgress = fileProgress;
    refresh();
}

QString FileProgressRow::percentText() const
{
    return ProgressTexts::percentText(m_fileProgress.progress);
}

void FileProgressRow::refresh()
{
    const QColor colour = NamedColours::status(m_fileProgress.status.color(), palette());
    m_symbol->setPixmap(
        SymbolIcon::icon(m_fileProgress.status.symbolName(), colour).pixmap(16, 16));
    m_symbol->setToolTip(m_fileProgress.status.displayText());
    m_name->setFullText(m_fileProgress.fileName());
    m_percent->setText(percentText());
    setAccessibleName(m_fileProgress.fileName());
    setAccessibleDescription(m_fileProgress.status.displayText() + QStringLiteral(", ") +
                             percentText());
}

void FileProgressRow::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        emit clicked(m_fileProgress);
    QWidget::mouseReleaseEvent(event);
}

void FileProgressRow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
        event->key() == Qt::Key_Space) {
        emit clicked(m_fileProgress);
        return;
    }
    QWidget::keyPressEvent(event);
}

void FileProgressRow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        refresh();
}

void FileProgressRow::paintEvent(QPaintEvent*)
{
    if (!hasFocus())
        return;
    QStylePainter painter(this);
    QStyleOptionFocusRect option;
    option.initFrom(this);
    painter.drawPrimitive(QStyle::PE_FrameFocusRect, option);
}

} // namespace Ondrilet
