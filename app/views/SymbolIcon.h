// SPDX-License-Identifier: GPL-3.0-or-later
// Icons for the symbol names the windows use ("video", "music.note", "plus" …): the desktop's icon
// theme where it has the matching freedesktop icon, otherwise a glyph this program draws itself, so
// every symbol always shows. GUI thread only.
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace Ondrilet {

class SymbolIcon
{
public:
    // The freedesktop theme icon that means the same as `symbol`; empty for a symbol that the
    // program only ever draws itself.
    static QString themeIconName(const QString& symbol);

    // The icon for `symbol`. With a valid `tint` the icon is one flat colour: the theme's symbolic
    // variant recoloured, or the drawn glyph in that colour. Without a tint the theme's icon shows
    // as the theme draws it, and the drawn glyph takes the palette's text colour.
    static QIcon icon(const QString& symbol, const QColor& tint = QColor());

    // The program's own glyph for `symbol`, in `color` (the palette's text colour if invalid).
    // An unknown symbol draws as a plain document.
    static QIcon drawnIcon(const QString& symbol, const QColor& color = QColor());

    // True for every symbol that has a glyph of its own.
    static bool hasDrawnGlyph(const QString& symbol);

    // The application's own icon, drawn: the tile with the waveform and the arrow.
    static QIcon applicationIcon();
};

} // namespace Ondrilet
