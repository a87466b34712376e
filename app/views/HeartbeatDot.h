// SPDX-License-Identifier: GPL-3.0-or-later
// The small green dot of the progress area: full strength while the conversion's heartbeat is
// on, faded to 0.3 while it is off, easing between the two in a quarter of a second. GUI thread.
#pragma once

#include <QColor>
#include <QVariantAnimation>
#include <QWidget>

namespace Ondrilet {

class HeartbeatDot : public QWidget
{
    Q_OBJECT

public:
    static constexpr qreal dimmedOpacity = 0.3;
    static constexpr int fadeMilliseconds = 250;

    explicit HeartbeatDot(QWidget* parent = nullptr);

    bool isBeating() const { return m_beating; }
    void setBeating(bool beating);
    // The opacity the dot is heading for.
    qreal targetOpacity() const { return m_beating ? 1.0 : dimmedOpacity; }
    QColor colour() const;

    QSize sizeHint() const override { return QSize(12, 12); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_beating = false;
    qreal m_opacity = dimmedOpacity;
    QVariantAnimation m_fade;
};

} // namespace Ondrilet
