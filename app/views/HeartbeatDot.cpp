// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/HeartbeatDot.h"

#include <QEasingCurve>
#include <QPainter>

namespace Ondrilet {

HeartbeatDot::HeartbeatDot(QWidget* parent)
    : QWidget(parent)
{
    setFixedSize(12, 12);
    setAccessibleName(QStringLiteral("Conversion heartbeat"));
    m_fade.setDuration(fadeMilliseconds);
    m_fade.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&m_fade, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        m_opacity = value.toReal();
        update();
    });
}

void HeartbeatDot::setBeating(bool beating)
{
    if (beating == m_beating)
        return;
    m_beating = beating;
    m_fade.stop();
    m_fade.setStartValue(m_opacity);
    m_fade.setEndValue(targetOpacity());
    m_fade.start();
}

QColor HeartbeatDot::colour() const
{
    return QColor(0x34, 0xc7, 0x59);
}

void HeartbeatDot::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(m_opacity);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour());
    const qreal side = std::min(width(), height()) - 2.0;
    painter.drawEllipse(QRectF((width() - side) / 2.0, (height() - side) / 2.0, side, side));
}

} // namespace Ondrilet
