// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/MetricCard.h"

#include "app/views/AppearancePalette.h"
#include "app/views/SecondaryLabel.h"
#include "app/views/SymbolIcon.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

#include <algorithm>

namespace Ondrilet {

MetricCard::MetricCard(const QString& title, const QString& symbol, QWidget* parent)
    : QFrame(parent)
    , m_symbol(symbol)
    , m_icon(new QLabel(this))
    , m_value(new QLabel(this))
    , m_title(new SecondaryLabel(title, this))
{
    setAccessibleName(title);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 10, 12, 10);
    layout->setSpacing(4);
    m_icon->setAlignment(Qt::AlignHCenter);
    m_icon->setFixedHeight(20);
    m_value->setAlignment(Qt::AlignHCenter);
    QFont valueFont = m_value->font();
    valueFont.setBold(true);
    valueFont.setPointSizeF(valueFont.pointSizeF() * 1.3);
    m_value->setFont(valueFont);
    m_title->setAlignment(Qt::AlignHCenter);
    QFont titleFont = m_title->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 0.9);
    m_title->setFont(titleFont);
    layout->addWidget(m_icon);
    layout->addWidget(m_value);
    layout->addWidget(m_title);
    // The title always shows whole; the row of cards grows the window instead.
    setMinimumWidth(std::max(96, QFontMetrics(titleFont).horizontalAdvance(title) + 28));
    refreshIcon();
}

QString MetricCard::title() const
{
    return m_title->text();
}

QString MetricCard::value() const
{
    return m_value->text();
}

void MetricCard::setValue(const QString& value)
{
    m_value->setText(value);
    setAccessibleDescription(value);
}

void MetricCard::refreshIcon()
{
    if (m_symbol.isEmpty()) {
        m_icon->clear();
        return;
    }
    m_icon->setPixmap(SymbolIcon::icon(m_symbol, palette().color(QPalette::Highlight))
                          .pixmap(18, 18, QIcon::Normal));
}

void MetricCard::changeEvent(QEvent* event)
{
    QFrame::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        refreshIcon();
}

void MetricCard::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colours = palette();
    const bool dark = AppearancePalette::isDark(colours);
    const QColor fill =
        dark ? colours.color(QPalette::Window).lighter(118) : colours.color(QPalette::Base);
    const QColor border =
        dark ? colours.color(QPalette::Window).lighter(150) : colours.color(QPalette::Mid);
    QPainterPath outline;
    outline.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
    painter.fillPath(outline, fill);
    painter.setPen(QPen(border, 1));
    painter.drawPath(outline);
}

} // namespace Ondrilet
