// SPDX-License-Identifier: GPL-3.0-or-later
// One progress report of a conversion: the fraction done, the status text and the phase.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/progress/ConversionPhase.h"

#include <QString>

namespace ConversionEngine {

struct ConversionProgress
{
    double progress = 0.0; // a fraction of the whole conversion
    QString status;
    ConversionPhase phase = ConversionPhase::initializing;

    friend bool operator==(const ConversionProgress&, const ConversionProgress&) = default;
};

} // namespace ConversionEngine
