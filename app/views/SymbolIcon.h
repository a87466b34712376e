// SPDX-License-Identifier: GPL-3.0-or-later
// Icons for the symbol names the windows use ("video", "music.note", "plus" …): the desktop's icon
// theme where it has the matching freedesktop icon, otherwise the program's own glyph, one SVG
// image per symbol among its resources, so every symbol always shows. GUI thread only.
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace Ondrilet {

class SymbolIcon
{
public:
    // The icon for `symbol`. With a valid `tint` the icon is one flat colour: the theme's symbolic
    // variant recoloured, or the program's glyph in that colour. Without a tint the theme's icon
    // shows as the theme draws it, and the glyph takes the palette's text colour. An unknown
    // symbol shows as a plain document.
    static QIcon icon(const QString& symbol, const QColor& tint = QColor());

    // The application's own icon: the tile with the waveform and the arrow.
    static QIcon applicationIcon();
};

} // namespace Ondrilet
