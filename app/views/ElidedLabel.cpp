// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/ElidedLabel.h"

#include <QFontMetrics>
#include <QResizeEvent>

namespace Ondrilet {

ElidedLabel::ElidedLabel(QWidget* parent, Qt::TextElideMode mode)
    : QLabel(parent)
    , m_mode(mode)
{
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    setTextFormat(Qt::PlainText);
}

void ElidedLabel::setFullText(const QString& text)
{
    if (text == m_fullText && !text.isEmpty())
        return;
    m_fullText = text;
    setAccessibleName(text);
    refresh();
    updateGeometry();
}

QSize ElidedLabel::minimumSizeHint() const
{
    const QFontMetrics metrics(font());
    return QSize(metrics.horizontalAdvance(QStringLiteral("…")) * 4, metrics.height());
}

QSize ElidedLabel::sizeHint() const
{
    const QFontMetrics metrics(font());
    return QSize(metrics.horizontalAdvance(m_fullText) + 2, metrics.height());
}

void ElidedLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    refresh();
}

void ElidedLabel::refresh()
{
    const QFontMetrics metrics(font());
    const QString shown = metrics.elidedText(m_fullText, m_mode, std::max(0, width()));
    QLabel::setText(shown);
    setToolTip(shown == m_fullText ? QString() : m_fullText);
}

} // namespace Ondrilet
