// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/SymbolIcon.h"

#include <QApplication>
#include <QFont>
#include <QHash>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>

#include <cmath>
#include <functional>
#include <numbers>

namespace Ondrilet {

namespace {

// Glyphs are drawn on a 24 × 24 grid and scaled to the size asked for.
constexpr qreal gridSize = 24.0;
constexpr qreal strokeWidth = 1.8;

QPen strokePen(const QColor& color, qreal width = strokeWidth)
{
    return QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

// Paints `shape` in `color` and then cuts what `knockout` paints out of it, so the cut shows the
// background (the check in a filled circle).
void knockOut(QPainter& painter, const std::function<void(QPainter&)>& knockout)
{
    painter.save();
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    knockout(painter);
    painter.restore();
}

void drawPage(QPainter& p, const QColor& c)
{
    QPainterPath page;
    page.moveTo(5, 2.5);
    page.lineTo(14, 2.5);
    page.lineTo(19, 7.5);
    page.lineTo(19, 21.5);
    page.lineTo(5, 21.5);
    page.closeSubpath();
    p.setPen(strokePen(c));
    p.setBrush(Qt::NoBrush);
    p.drawPath(page);
    QPainterPath fold;
    fold.moveTo(14, 2.5);
    fold.lineTo(14, 7.5);
    fold.lineTo(19, 7.5);
    p.drawPath(fold);
}

void drawGear(QPainter& p, const QColor& c, QPointF centre, qreal radius, int teeth)
{
    p.save();
    p.translate(centre);
    p.setPen(Qt::NoPen);
    p.setBrush(c);
    const qreal toothWidth = radius * 0.55;
    for (int tooth = 0; tooth < teeth; ++tooth) {
        p.save();
        p.rotate(360.0 * tooth / teeth);
        p.drawRoundedRect(QRectF(-toothWidth / 2, -radius * 1.3, toothWidth, radius * 0.7), 0.6,
                          0.6);
        p.restore();
    }
    p.drawEllipse(QPointF(0, 0), radius, radius);
    knockOut(p, [radius](QPainter& k) {
        k.setBrush(Qt::black);
        k.drawEllipse(QPointF(0, 0), radius * 0.42, radius * 0.42);
    });
    p.restore();
}

void drawClockFace(QPainter& p, const QColor& c)
{
    p.setPen(strokePen(c));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(QPointF(12, 12), 9.2, 9.2);
    p.drawLine(QPointF(12, 12), QPointF(12, 6.5));
    p.drawLine(QPointF(12, 12), QPointF(15.5, 14));
}

void drawFilledCircle(QPainter& p, const QColor& c)
{
    p.setPen(Qt::NoPen);
    p.setBrush(c);
    p.drawEllipse(QPointF(12, 12), 10, 10);
}

void drawArrowHead(QPainter& p, QPointF tip, qreal angleDegrees, qreal size)
{
    const qreal angle = angleDegrees * std::numbers::pi / 180.0;
    const qreal spread = 0.5;
    const QPointF left(tip.x() - size * std::cos(angle - spread),
                       tip.y() - size * std::sin(angle - spread));
    const QPointF right(tip.x() - size * std::cos(angle + spread),
                        tip.y() - size * std::sin(angle + spread));
    QPainterPath head;
    head.moveTo(left);
    head.lineTo(tip);
    head.lineTo(right);
    p.drawPath(head);
}

using Glyph = std::function<void(QPainter&, const QColor&)>;

const QHash<QString, Glyph>& glyphs()
{
    static const QHash<QString, Glyph> table = [] {
        QHash<QString, Glyph> g;
        g.insert(QStringLiteral("video"), [](QPainter& p, const QColor& c) {
            p.setPen(Qt::NoPen);
            p.setBrush(c);
            p.drawRoundedRect(QRectF(2, 6, 14, 12), 2.5, 2.5);
            QPainterPath lens;
            lens.moveTo(17, 10.5);
            lens.lineTo(22, 7);
            lens.lineTo(22, 17);
            lens.lineTo(17, 13.5);
            lens.closeSubpath();
            p.drawPath(lens);
        });
        g.insert(QStringLiteral("video.fill"), g.value(QStringLiteral("video")));
        g.insert(QStringLiteral("music.note"), [](QPainter& p, const QColor& c) {
            p.setPen(Qt::NoPen);
            p.setBrush(c);
            p.save();
            p.translate(8.5, 17.5);
            p.rotate(-20);
            p.drawEllipse(QPointF(0, 0), 3.8, 2.9);
            p.restore();
            p.setPen(strokePen(c, 2.0));
            p.drawLine(QPointF(11.6, 17), QPointF(11.6, 3.5));
            QPainterPath flag;
            flag.moveTo(11.6, 3.5);
            flag.cubicTo(14, 5.5, 18.5, 6, 18, 11);
            p.setBrush(Qt::NoBrush);
            p.drawPath(flag);
        });
        g.insert(QStringLiteral("doc"), drawPage);
        g.insert(QStringLiteral("doc.text"), [](QPainter& p, const QColor& c) {
            drawPage(p, c);
            p.setPen(strokePen(c, 1.4));
            for (const qreal y : {11.5, 14.5, 17.5})
                p.drawLine(QPointF(8, y), QPointF(16, y));
        });
        g.insert(QStringLiteral("photo"), [](QPainter& p, const QColor& c) {
            p.setPen(strokePen(c));
            p.setBrush(Qt::NoBrush);
            p.drawRoundedRect(QRectF(2.5, 4.5, 19, 15), 2.5, 2.5);
            p.setPen(Qt::NoPen);
            p.setBrush(c);
            p.drawEllipse(QPointF(8, 9.5), 1.8, 1.8);
            QPainterPath hills;
            hills.moveTo(4.5, 18);
            hills.lineTo(10, 12);
            hills.lineTo(13.5, 15.5);
            hills.lineTo(16, 13);
            hills.lineTo(19.5, 18);
            hills.closeSubpath();
            p.drawPath(hills);
        });
        g.insert(QStringLiteral("questionmark.circle"), [](QPainter& p, const QColor& c) {
            p.setPen(strokePen(c));
            p.setBrush(Qt::NoBrush);
            p.drawEllipse(QPointF(12, 12), 9.2, 9.2);
            QPainterPath hook;
            hook.moveTo(9.2, 9.6);
            hook.cubicTo(9.2, 6.2, 14.8, 6.2, 14.8, 9.6);
            hook.cubicTo(14.8, 11.6, 12, 11.8, 12, 14);
            p.drawPath(hook);
            p.setPen(Qt::NoPen);
            p.setBrush(c);
            p.drawEllipse(QPointF(12, 17), 1.1, 1.1);
        });
        g.insert(QStringLiteral("plus"), [](QPainter& p, const QColor& c) {
            p.setPen(strokePen(c, 2.2));
            p.drawLine(QPointF(12, 5), QPointF(12, 19));
            p.drawLine(QPointF(5, 12), QPointF(19, 12));
        });
        g.insert(QStringLiteral("slider.horizontal.3"), [](QPainter& p, const QColor& c) {
            // Three tracks, each with its knob at another place.
            p.setPen(strokePen(c, 1.8));
            for (const qreal y : {6.0, 12.0, 18.0})
                p.drawLine(QPointF(4, y), QPointF(20, y));
            p.setBrush(c);
            p.setPen(Qt::NoPen);
            p.drawEllipse(QPointF(15, 6), 2.4, 2.4);
            p.drawEllipse(QPointF(8, 12), 2.4, 2.4);
            p.drawEllipse(QPointF(13, 18), 2.4, 2.4);
        });
        g.insert(QStringLiteral("minus"), [](QPainter& p, const QColor& c) {
            p.setPen(strokePen(c, 2.2));
            p.drawLine(QPointF(5, 12), QPointF(19, 12));
        });
        g.insert(QStringLiteral("xmark"), [](QPainter& p, const QColor& c) {
            p.setPen(strokePen(c, 2.0));
            p.drawLine(QPointF(7, 7), QPointF(17, 17));
            p.drawLine(QPointF(17, 7), QPointF(7, 17));
        });
        g.insert(QStringLiteral("arrow.clockwise"), [](QPainter& p, const QColor& c) {
            p.setPen(strokePen(c));
            p.setBrush(Qt::NoBrush);
            const QRectF ring(4.5, 4.5, 15, 15);
            p.drawArc(ring, 80 * 16, -300 * 16);
            drawArrowHead(p, QPointF(13.6, 4.6), 0, 4.0);
        });
        g.insert(QStringLiteral("gearshape.2"), [](QPainter& p, const QColor& c) {
            drawGear(p, c, QPointF(9, 10), 4.6, 8);
            drawGear(p, c, QPointF(17.5, 17), 2.9, 6);
        });
        g.insert(QStringLiteral("checkmark.circle.fill"), [](QPainter& p, const QColor& c) {
            drawFilledCircle(p, c);
            knockOut(p, [](QPainter& k) {
                QPainterPath check;
                check.moveTo(7.5, 12.5);
                check.lineTo(10.5, 15.5);
                check.lineTo(16.5, 8.8);
                k.setPen(strokePen(Qt::black, 2.2));
                k.setBrush(Qt::NoBrush);
                k.drawPath(check);
            });
        });
        g.insert(QStringLiteral("xmark.circle.fill"), [](QPainter& p, const QColor& c) {
            drawFilledCircle(p, c);
            knockOut(p, [](QPainter& k) {
                k.setPen(strokePen(Qt::black, 2.2));
                k.drawLine(QPointF(8.5, 8.5), QPointF(15.5, 15.5));
                k.drawLine(QPointF(15.5, 8.5), QPointF(8.5, 15.5));
            });
        });
        g.insert(QStringLiteral("pause.circle.fill"), [](QPainter& p, const QColor& c) {
            drawFilledCircle(p, c);
            knockOut(p, [](QPainter& k) {
                k.setPen(Qt::NoPen);
                k.setBrush(Qt::black);
                k.drawRoundedRect(QRectF(8.6, 7.5, 2.4, 9), 0.8, 0.8);
                k.drawRoundedRect(QRectF(13, 7.5, 2.4, 9), 0.8, 0.8);
            });
        });
        g.insert(QStringLiteral("clock"), drawClockFace);
        g.insert(QStringLiteral("timer"), [](QPainter& p, const QColor& c) {
            p.setPen(strokePen(c));
            p.setBrush(Qt::NoBrush);
            p.drawEllipse(QPointF(12, 13.5), 8, 8);
            p.drawLine(QPointF(10, 2.8), QPointF(14, 2.8));
            p.drawLine(QPointF(12, 13.5), QPointF(15, 9.5));
        });
        g.insert(QStringLiteral("speedometer"), [](QPainter& p, const QColor& c) {
            p.setPen(strokePen(c));
            p.setBrush(Qt::NoBrush);
            p.drawArc(QRectF(3, 4, 18, 18), -20 * 16, 220 * 16);
            p.drawLine(QPointF(12, 13), QPointF(16.5, 8.5));
            p.setPen(Qt::NoPen);
            p.setBrush(c);
            p.drawEllipse(QPointF(12, 13), 1.8, 1.8);
        });
        g.insert(QStringLiteral("memorychip"), [](QPainter& p, const QColor& c) {
            p.setPen(strokePen(c));
            p.setBrush(Qt::NoBrush);
            p.drawRoundedRect(QRectF(6, 5, 12, 14), 1.5, 1.5);
            p.setPen(strokePen(c, 1.4));
            for (const qreal y : {8.0, 12.0, 16.0}) {
                p.drawLine(QPointF(2.5, y), QPointF(6, y));
                p.drawLine(QPointF(18, y), QPointF(21.5, y));
            }
        });
        g.insert(QStringLiteral("arrow.down.circle"), [](QPainter& p, const QColor& c) {
            p.setPen(strokePen(c));
            p.setBrush(Qt::NoBrush);
            p.drawEllipse(QPointF(12, 12), 9.2, 9.2);
            p.drawLine(QPointF(12, 7), QPointF(12, 16.5));
            drawArrowHead(p, QPointF(12, 16.8), 90, 4.2);
        });
        g.insert(QStringLiteral("chart.line.uptrend.xyaxis"), [](QPainter& p, const QColor& c) {
            p.setPen(strokePen(c));
            p.setBrush(Qt::NoBrush);
            QPainterPath axes;
            axes.moveTo(3.5, 3.5);
            axes.lineTo(3.5, 20.5);
            axes.lineTo(20.5, 20.5);
            p.drawPath(axes);
            QPainterPath trend;
            trend.moveTo(6.5, 16.5);
            trend.lineTo(10.5, 12);
            trend.lineTo(13.5, 14.5);
            trend.lineTo(19.5, 6.5);
            p.drawPath(trend);
        });
        g.insert(QStringLiteral("chevron.down"), [](QPainter& p, const QColor& c) {
            p.setPen(strokePen(c, 2.0));
            QPainterPath v;
            v.moveTo(6.5, 9.5);
            v.lineTo(12, 15);
            v.lineTo(17.5, 9.5);
            p.drawPath(v);
        });
        g.insert(QStringLiteral("chevron.up"), [](QPainter& p, const QColor& c) {
            p.setPen(strokePen(c, 2.0));
            QPainterPath v;
            v.moveTo(6.5, 14.5);
            v.lineTo(12, 9);
            v.lineTo(17.5, 14.5);
            p.drawPath(v);
        });
        g.insert(QStringLiteral("chevron.right"), [](QPainter& p, const QColor& c) {
            p.setPen(strokePen(c, 2.0));
            QPainterPath v;
            v.moveTo(9.5, 6.5);
            v.lineTo(15, 12);
            v.lineTo(9.5, 17.5);
            p.drawPath(v);
        });
        g.insert(QStringLiteral("folder"), [](QPainter& p, const QColor& c) {
            QPainterPath folder;
            folder.moveTo(2.5, 6);
            folder.quadTo(2.5, 4.5, 4, 4.5);
            folder.lineTo(9, 4.5);
            folder.lineTo(11, 7);
            folder.lineTo(20, 7);
            folder.quadTo(21.5, 7, 21.5, 8.5);
            folder.lineTo(21.5, 18);
            folder.quadTo(21.5, 19.5, 20, 19.5);
            folder.lineTo(4, 19.5);
            folder.quadTo(2.5, 19.5, 2.5, 18);
            folder.closeSubpath();
            p.setPen(strokePen(c));
            p.setBrush(Qt::NoBrush);
            p.drawPath(folder);
        });
        g.insert(QStringLiteral("tray.and.arrow.down"), [](QPainter& p, const QColor& c) {
            p.setPen(strokePen(c));
            p.setBrush(Qt::NoBrush);
            QPainterPath tray;
            tray.moveTo(3, 14);
            tray.lineTo(3, 20);
            tray.lineTo(21, 20);
            tray.lineTo(21, 14);
            p.drawPath(tray);
            p.drawLine(QPointF(12, 3), QPointF(12, 14.5));
            drawArrowHead(p, QPointF(12, 14.8), 90, 4.5);
        });
        return g;
    }();
    return table;
}

const QHash<QString, QString>& themeNames()
{
    static const QHash<QString, QString> table = {
        {QStringLiteral("video"), QStringLiteral("video-x-generic")},
        {QStringLiteral("video.fill"), QStringLiteral("video-x-generic")},
        {QStringLiteral("music.note"), QStringLiteral("audio-x-generic")},
        {QStringLiteral("doc"), QStringLiteral("text-x-generic")},
        {QStringLiteral("doc.text"), QStringLiteral("text-x-generic")},
        {QStringLiteral("photo"), QStringLiteral("image-x-generic")},
        {QStringLiteral("questionmark.circle"), QStringLiteral("dialog-question")},
        {QStringLiteral("plus"), QStringLiteral("list-add")},
        {QStringLiteral("minus"), QStringLiteral("list-remove")},
        {QStringLiteral("slider.horizontal.3"), QStringLiteral("configure")},
        {QStringLiteral("xmark"), QStringLiteral("window-close")},
        {QStringLiteral("arrow.clockwise"), QStringLiteral("view-refresh")},
        {QStringLiteral("gearshape.2"), QStringLiteral("emblem-system")},
        {QStringLiteral("checkmark.circle.fill"), QStringLiteral("emblem-ok")},
        {QStringLiteral("xmark.circle.fill"), QStringLiteral("dialog-error")},
        {QStringLiteral("clock"), QStringLiteral("appointment-soon")},
        {QStringLiteral("timer"), QStringLiteral("appointment-soon")},
        {QStringLiteral("pause.circle.fill"), QStringLiteral("media-playback-pause")},
        {QStringLiteral("chevron.down"), QStringLiteral("go-down")},
        {QStringLiteral("chevron.up"), QStringLiteral("go-up")},
        {QStringLiteral("chevron.right"), QStringLiteral("go-next")},
        {QStringLiteral("folder"), QStringLiteral("folder")},
        {QStringLiteral("tray.and.arrow.down"), QStringLiteral("document-import")},
    };
    return table;
}

QColor textColour(const QColor& color)
{
    if (color.isValid())
        return color;
    return QApplication::palette().color(QPalette::Active, QPalette::WindowText);
}

// Draws the glyph at whatever size and pixel density it is asked for.
class GlyphEngine : public QIconEngine
{
public:
    GlyphEngine(Glyph glyph, QColor color)
        : m_glyph(std::move(glyph))
        , m_color(std::move(color))
    {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        const qreal ratio =
            painter->device() != nullptr ? painter->device()->devicePixelRatioF() : 1.0;
        painter->drawImage(rect, render(rect.size(), ratio, mode));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override
    {
        return QPixmap::fromImage(render(size, 1.0, mode));
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal scale) override
    {
        QPixmap pixmap = QPixmap::fromImage(render(size, scale, mode));
        return pixmap;
    }

    QIconEngine* clone() const override { return new GlyphEngine(m_glyph, m_color); }
    QString key() const override { return QStringLiteral("OndriletGlyph"); }

private:
    QImage render(const QSize& size, qreal ratio, QIcon::Mode mode) const
    {
        const QSize pixels = (QSizeF(size) * ratio).toSize();
        QImage image(pixels.expandedTo(QSize(1, 1)), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        image.setDevicePixelRatio(ratio);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        const qreal side = std::min(size.width(), size.height());
        painter.translate((size.width() - side) / 2.0, (size.height() - side) / 2.0);
        painter.scale(side / gridSize, side / gridSize);
        QColor color = textColour(m_color);
        if (mode == QIcon::Disabled)
            color.setAlphaF(color.alphaF() * 0.4);
        m_glyph(painter, color);
        painter.end();
        return image;
    }

    Glyph m_glyph;
    QColor m_color;
};

// Shows a theme icon as one flat colour, keeping its shape.
class TintEngine : public QIconEngine
{
public:
    TintEngine(QIcon source, QColor tint)
        : m_source(std::move(source))
        , m_tint(std::move(tint))
    {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        const qreal ratio =
            painter->device() != nullptr ? painter->device()->devicePixelRatioF() : 1.0;
        painter->drawPixmap(rect, scaledPixmap(rect.size(), mode, state, ratio));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1.0);
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state,
                         qreal scale) override
    {
        QImage image = m_source.pixmap(size, scale, QIcon::Normal, state)
                           .toImage()
                           .convertToFormat(QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        QColor color = m_tint;
        if (mode == QIcon::Disabled)
            color.setAlphaF(color.alphaF() * 0.4);
        painter.fillRect(image.rect(), color);
        painter.end();
        return QPixmap::fromImage(image);
    }

    QIconEngine* clone() const override { return new TintEngine(m_source, m_tint); }
    QString key() const override { return QStringLiteral("OndriletTint"); }

private:
    QIcon m_source;
    QColor m_tint;
};

// A theme icon counts only when the theme can really draw it (an SVG-only theme without the SVG
// image plugin names icons it cannot show).
QIcon usableThemeIcon(const QString& name)
{
    if (name.isEmpty() || !QIcon::hasThemeIcon(name))
        return {};
    const QIcon icon = QIcon::fromTheme(name);
    if (icon.pixmap(QSize(24, 24)).isNull())
        return {};
    return icon;
}

} // namespace

QString SymbolIcon::themeIconName(const QString& symbol)
{
    return themeNames().value(symbol);
}

QIcon SymbolIcon::icon(const QString& symbol, const QColor& tint)
{
    const QString themeName = themeIconName(symbol);
    if (tint.isValid()) {
        QIcon themed = usableThemeIcon(themeName + QStringLiteral("-symbolic"));
        if (!themed.isNull())
            return QIcon(new TintEngine(themed, tint));
        return drawnIcon(symbol, tint);
    }
    const QIcon themed = usableThemeIcon(themeName);
    if (!themed.isNull())
        return themed;
    return drawnIcon(symbol);
}

QIcon SymbolIcon::drawnIcon(const QString& symbol, const QColor& color)
{
    const Glyph glyph = glyphs().value(symbol, drawPage);
    return QIcon(new GlyphEngine(glyph, color));
}

bool SymbolIcon::hasDrawnGlyph(const QString& symbol)
{
    return glyphs().contains(symbol);
}

QIcon SymbolIcon::applicationIcon()
{
    const Glyph tile = [](QPainter& p, const QColor&) {
        // The same drawing as packaging/icons/org.ondrilet.Ondrilet.svg, on a 24-unit grid.
        const qreal unit = gridSize / 256.0;
        p.scale(unit, unit);
        QLinearGradient gradient(QPointF(16, 16), QPointF(240, 240));
        gradient.setColorAt(0, QColor(0x7d, 0x52, 0xd9));
        gradient.setColorAt(1, QColor(0x4b, 0x2d, 0x96));
        p.setPen(Qt::NoPen);
        p.setBrush(gradient);
        p.drawRoundedRect(QRectF(16, 16, 224, 224), 52, 52);
        p.setBrush(Qt::white);
        p.drawRoundedRect(QRectF(52, 108, 16, 40), 8, 8);
        p.drawRoundedRect(QRectF(78, 84, 16, 88), 8, 8);
        p.drawRoundedRect(QRectF(104, 64, 16, 128), 8, 8);
        p.setBrush(QColor(255, 255, 255, 217));
        p.drawRoundedRect(QRectF(130, 92, 16, 72), 8, 8);
        QPainterPath arrow;
        arrow.moveTo(160, 80);
        arrow.lineTo(208, 128);
        arrow.lineTo(160, 176);
        p.setPen(QPen(Qt::white, 18, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.setBrush(Qt::NoBrush);
        p.drawPath(arrow);
    };
    const QIcon themed = usableThemeIcon(QStringLiteral("org.ondrilet.Ondrilet"));
    if (!themed.isNull())
        return themed;
    return QIcon(new GlyphEngine(tile, Qt::white));
}

} // namespace Ondrilet
