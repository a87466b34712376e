// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/SecondaryLabel.h"

#include "app/views/AppearancePalette.h"

#include <QApplication>
#include <QEvent>

namespace Ondrilet {

SecondaryLabel::SecondaryLabel(const QString& text, QWidget* parent)
    : QLabel(text, parent)
{
    takeColour();
}

void SecondaryLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        takeColour();
}

void SecondaryLabel::takeColour()
{
    // From the surroundings: this label's own text colour is the one being replaced.
    const QPalette around = parentWidget() ? parentWidget()->palette() : QApplication::palette();
    const QColor wanted = AppearancePalette::secondaryText(around);
    QPalette colours = palette();
    // Setting the palette sends another change; an equal colour ends the round.
    if (colours.color(QPalette::WindowText) == wanted)
        return;
    colours.setColor(QPalette::WindowText, wanted);
    setPalette(colours);
}

} // namespace Ondrilet
