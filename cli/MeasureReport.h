// SPDX-License-Identifier: GPL-3.0-or-later
// The JSON that --measure prints: the file, the loudness analysis's result under the names of
// its fields, and the peak pass's level as peakDB and peakLinear, in that order. Pure; any
// thread.
#pragma once

#include "ConversionEngine/core/LevelGain.h"
#include "ConversionEngine/core/LoudnessResult.h"

#include <QString>

namespace Ondrilet {

class MeasureReport
{
public:
    // An object of seven members, one per line, ending with a line feed. Each number is the
    // shortest decimal that reads back as the same 32-bit float; a value that is not finite
    // is written as null, which JSON has in place of infinities.
    static QString json(const QString& file, const ConversionEngine::LoudnessResult& loudness,
                        const ConversionEngine::PeakLevel& peak);

    static QString number(float value);
    static QString string(const QString& text);
};

} // namespace Ondrilet
