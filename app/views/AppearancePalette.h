// SPDX-License-Identifier: GPL-3.0-or-later
// The two looks of the program, light and dark, on the Fusion style, and the choice between them
// by the stored appearance ("System", "Light", "Dark"). GUI thread only.
#pragma once

#include <QColor>
#include <QPalette>
#include <QString>

class QApplication;

namespace Ondrilet {

class AppearancePalette
{
public:
    static QPalette light();
    static QPalette dark();

    // True when the desktop's own palette is a dark one.
    static bool systemPrefersDark();

    // Sets the Fusion style, once, and the palette of `appearance`: "Light", "Dark", or anything
    // else as "System", which picks light or dark after the desktop.
    static void apply(const QString& appearance);
    // The palette `apply` would set for `appearance`.
    static QPalette paletteFor(const QString& appearance);

    // True when `palette` is a dark one (light text on a dark window).
    static bool isDark(const QPalette& palette);

    // The colour that stands for secondary text in `palette`: between text and window.
    static QColor secondaryText(const QPalette& palette);
};

} // namespace Ondrilet
