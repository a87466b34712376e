// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/AppearancePalette.h"

#include <QApplication>
#include <QStyle>
#include <QStyleFactory>

namespace Ondrilet {

namespace {

struct Colours
{
    QColor window;
    QColor windowText;
    QColor base;
    QColor alternateBase;
    QColor button;
    QColor buttonText;
    QColor highlight;
    QColor highlightedText;
    QColor light;
    QColor midlight;
    QColor mid;
    QColor dark;
    QColor shadow;
    QColor link;
    QColor placeholder;
    QColor disabledText;
    QColor toolTipBase;
    QColor toolTipText;
};

QPalette build(const Colours& c)
{
    QPalette palette;
    palette.setColor(QPalette::Window, c.window);
    palette.setColor(QPalette::WindowText, c.windowText);
    palette.setColor(QPalette::Base, c.base);
    palette.setColor(QPalette::AlternateBase, c.alternateBase);
    palette.setColor(QPalette::Text, c.windowText);
    palette.setColor(QPalette::Button, c.button);
    palette.setColor(QPalette::ButtonText, c.buttonText);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::Highlight, c.highlight);
    palette.setColor(QPalette::HighlightedText, c.highlightedText);
    palette.setColor(QPalette::Light, c.light);
    palette.setColor(QPalette::Midlight, c.midlight);
    palette.setColor(QPalette::Mid, c.mid);
    palette.setColor(QPalette::Dark, c.dark);
    palette.setColor(QPalette::Shadow, c.shadow);
    palette.setColor(QPalette::Link, c.link);
    palette.setColor(QPalette::LinkVisited, c.link);
    palette.setColor(QPalette::PlaceholderText, c.placeholder);
    palette.setColor(QPalette::ToolTipBase, c.toolTipBase);
    palette.setColor(QPalette::ToolTipText, c.toolTipText);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, c.disabledText);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, c.mid);
    palette.setColor(QPalette::Inactive, QPalette::Highlight, c.highlight);
    return palette;
}

QPalette& desktopPalette()
{
    // Taken before the first of ours replaces the application's palette.
    static QPalette palette = QApplication::palette();
    return palette;
}

} // namespace

QPalette AppearancePalette::light()
{
    return build(Colours{
        .window = QColor(0xf3, 0xf3, 0xf5),
        .windowText = QColor(0x1d, 0x1d, 0x20),
        .base = QColor(0xff, 0xff, 0xff),
        .alternateBase = QColor(0xf6, 0xf6, 0xf8),
        .button = QColor(0xfb, 0xfb, 0xfc),
        .buttonText = QColor(0x1d, 0x1d, 0x20),
        .highlight = QColor(0x35, 0x74, 0xf0),
        .highlightedText = QColor(0xff, 0xff, 0xff),
        .light = QColor(0xff, 0xff, 0xff),
        .midlight = QColor(0xe8, 0xe8, 0xec),
        .mid = QColor(0xc8, 0xc8, 0xce),
        .dark = QColor(0x9c, 0x9c, 0xa4),
        .shadow = QColor(0x60, 0x60, 0x68),
        .link = QColor(0x1c, 0x5f, 0xd6),
        .placeholder = QColor(0x8a, 0x8a, 0x92),
        .disabledText = QColor(0xa0, 0xa0, 0xa8),
        .toolTipBase = QColor(0xff, 0xff, 0xff),
        .toolTipText = QColor(0x1d, 0x1d, 0x20),
    });
}

QPalette AppearancePalette::dark()
{
    return build(Colours{
        .window = QColor(0x24, 0x24, 0x28),
        .windowText = QColor(0xe9, 0xe9, 0xec),
        .base = QColor(0x1a, 0x1a, 0x1d),
        .alternateBase = QColor(0x2a, 0x2a, 0x2f),
        .button = QColor(0x34, 0x34, 0x3a),
        .buttonText = QColor(0xe9, 0xe9, 0xec),
        .highlight = QColor(0x3d, 0x7d, 0xf5),
        .highlightedText = QColor(0xff, 0xff, 0xff),
        .light = QColor(0x4a, 0x4a, 0x52),
        .midlight = QColor(0x3a, 0x3a, 0x41),
        .mid = QColor(0x2e, 0x2e, 0x34),
        .dark = QColor(0x16, 0x16, 0x19),
        .shadow = QColor(0x0a, 0x0a, 0x0c),
        .link = QColor(0x6e, 0xa2, 0xff),
        .placeholder = QColor(0x80, 0x80, 0x88),
        .disabledText = QColor(0x70, 0x70, 0x78),
        .toolTipBase = QColor(0x34, 0x34, 0x3a),
        .toolTipText = QColor(0xe9, 0xe9, 0xec),
    });
}

bool AppearancePalette::systemPrefersDark()
{
    return isDark(desktopPalette());
}

QPalette AppearancePalette::paletteFor(const QString& appearance)
{
    if (appearance == QLatin1String("Light"))
        return light();
    if (appearance == QLatin1String("Dark"))
        return dark();
    return systemPrefersDark() ? dark() : light();
}

void AppearancePalette::apply(const QString& appearance)
{
    desktopPalette(); // Keep the desktop's palette before replacing it.
    if (QApplication::style()->name().compare(QLatin1String("fusion"), Qt::CaseInsensitive) != 0)
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(paletteFor(appearance));
}

bool AppearancePalette::isDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightnessF() <
           palette.color(QPalette::WindowText).lightnessF();
}

QColor AppearancePalette::secondaryText(const QPalette& palette)
{
    const QColor text = palette.color(QPalette::WindowText);
    const QColor window = palette.color(QPalette::Window);
    const qreal mix = 0.4;
    return QColor::fromRgbF(text.redF() * (1 - mix) + window.redF() * mix,
                            text.greenF() * (1 - mix) + window.greenF() * mix,
                            text.blueF() * (1 - mix) + window.blueF() * mix);
}

} // namespace Ondrilet
