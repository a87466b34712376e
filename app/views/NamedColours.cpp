// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/NamedColours.h"

#include "app/views/AppearancePalette.h"

namespace Ondrilet {

namespace {

QColor shade(const QPalette& palette, const char* light, const char* dark)
{
    return QColor(QString::fromLatin1(AppearancePalette::isDark(palette) ? dark : light));
}

} // namespace

QColor NamedColours::green(const QPalette& palette)
{
    return shade(palette, "#28a745", "#32d74b");
}

QColor NamedColours::status(FileConversionStatus::Color colour, const QPalette& palette)
{
    switch (colour) {
    case FileConversionStatus::Color::blue:
        return shade(palette, "#1f6feb", "#4d9bff");
    case FileConversionStatus::Color::green:
        return green(palette);
    case FileConversionStatus::Color::red:
        return shade(palette, "#d73a49", "#ff6b6b");
    case FileConversionStatus::Color::orange:
        return shade(palette, "#e36209", "#ff9f0a");
    case FileConversionStatus::Color::yellow:
        return shade(palette, "#b08800", "#ffd60a");
    case FileConversionStatus::Color::secondary:
        return AppearancePalette::secondaryText(palette);
    }
    return palette.color(QPalette::Text);
}

QColor NamedColours::phase(ProgressTexts::PhaseColor colour, const QPalette& palette)
{
    switch (colour) {
    case ProgressTexts::PhaseColor::blue:
        return shade(palette, "#1f6feb", "#4d9bff");
    case ProgressTexts::PhaseColor::yellow:
        return shade(palette, "#b08800", "#ffd60a");
    case ProgressTexts::PhaseColor::indigo:
        return shade(palette, "#4b3fd1", "#7d7aff");
    case ProgressTexts::PhaseColor::purple:
        return shade(palette, "#8e44ad", "#bf5af2");
    case ProgressTexts::PhaseColor::orange:
        return shade(palette, "#e36209", "#ff9f0a");
    case ProgressTexts::PhaseColor::green:
        return green(palette);
    }
    return palette.color(QPalette::Text);
}

} // namespace Ondrilet
