// SPDX-License-Identifier: GPL-3.0-or-later
// The shades of the named colours the progress windows use (status and phase colours), one set
// for the light palette and one for the dark. GUI thread only.
#pragma once

#include "app/batch/FileConversionStatus.h"
#include "app/batch/ProgressTexts.h"

#include <QColor>
#include <QPalette>

namespace Ondrilet {

class NamedColours
{
public:
    static QColor status(FileConversionStatus::Color colour, const QPalette& palette);
    static QColor phase(ProgressTexts::PhaseColor colour, const QPalette& palette);
    // The heartbeat dot's and the LIVE mark's green.
    static QColor green(const QPalette& palette);
};

} // namespace Ondrilet
