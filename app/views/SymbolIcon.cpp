// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/SymbolIcon.h"

#include <QApplication>
#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>

#include <memory>

namespace Ondrilet {

namespace {

// The glyphs' folder among the resources: one file per symbol, "<symbol>.svg", drawn in one colour
// on a 24 × 24 grid; only their shape counts, the colour is laid on when they are painted.
const QString glyphFolder = QStringLiteral(":/symbols/");
const QString applicationIconFile = QStringLiteral(":/icons/org.ondrilet.Ondrilet.svg");

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

// The file of `symbol`'s glyph; a symbol without one of its own shows as a document, and the
// filled camera is the same glyph as the camera.
QString glyphFile(const QString& symbol)
{
    const QString name = symbol == QLatin1String("video.fill") ? QStringLiteral("video") : symbol;
    const QString file = glyphFolder + name + QStringLiteral(".svg");
    return QFile::exists(file) ? file : glyphFolder + QStringLiteral("doc.svg");
}

// Each image is read once and kept for the program's life.
QSvgRenderer& rendererFor(const QString& file)
{
    static QHash<QString, std::shared_ptr<QSvgRenderer>> renderers;
    std::shared_ptr<QSvgRenderer>& renderer = renderers[file];
    if (!renderer)
        renderer = std::make_shared<QSvgRenderer>(file);
    return *renderer;
}

QColor textColour(const QColor& color)
{
    if (color.isValid())
        return color;
    return QApplication::palette().color(QPalette::Active, QPalette::WindowText);
}

// Paints an SVG image at whatever size and pixel density it is asked for, centred in a square:
// as it is drawn, or in one colour (a disabled icon fainter), the tint or else the palette's text
// colour at the time of painting.
class SvgEngine : public QIconEngine
{
public:
    enum class Colouring
    {
        asDrawn,
        tinted,
    };

    SvgEngine(QString file, Colouring colouring, QColor tint = QColor())
        : m_file(std::move(file))
        , m_colouring(colouring)
        , m_tint(std::move(tint))
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
        return QPixmap::fromImage(render(size, scale, mode));
    }

    QIconEngine* clone() const override { return new SvgEngine(m_file, m_colouring, m_tint); }
    QString key() const override { return QStringLiteral("OndriletSvg"); }

private:
    QImage render(const QSize& size, qreal ratio, QIcon::Mode mode) const
    {
        const QSize pixels = (QSizeF(size) * ratio).toSize().expandedTo(QSize(1, 1));
        QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        const qreal side = std::min(pixels.width(), pixels.height());
        rendererFor(m_file).render(&painter, QRectF((pixels.width() - side) / 2.0,
                                                    (pixels.height() - side) / 2.0, side, side));
        if (m_colouring == Colouring::tinted) {
            QColor colour = textColour(m_tint);
            if (mode == QIcon::Disabled)
                colour.setAlphaF(colour.alphaF() * 0.4);
            painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
            painter.fillRect(image.rect(), colour);
        }
        painter.end();
        image.setDevicePixelRatio(ratio);
        return image;
    }

    QString m_file;
    Colouring m_colouring;
    QColor m_tint;
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

QIcon SymbolIcon::icon(const QString& symbol, const QColor& tint)
{
    const QString themeName = themeNames().value(symbol);
    if (tint.isValid()) {
        QIcon themed = usableThemeIcon(themeName + QStringLiteral("-symbolic"));
        if (!themed.isNull())
            return QIcon(new TintEngine(themed, tint));
        return QIcon(new SvgEngine(glyphFile(symbol), SvgEngine::Colouring::tinted, tint));
    }
    const QIcon themed = usableThemeIcon(themeName);
    if (!themed.isNull())
        return themed;
    return QIcon(new SvgEngine(glyphFile(symbol), SvgEngine::Colouring::tinted));
}

QIcon SymbolIcon::applicationIcon()
{
    const QIcon themed = usableThemeIcon(QStringLiteral("org.ondrilet.Ondrilet"));
    if (!themed.isNull())
        return themed;
    return QIcon(new SvgEngine(applicationIconFile, SvgEngine::Colouring::asDrawn));
}

} // namespace Ondrilet
