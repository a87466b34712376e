// SPDX-License-Identifier: GPL-3.0-or-later
// The texts and named colours the progress windows show for the tracker's and the batch's
// figures: percentages, counts, speeds, sizes and the lines that vanish while a time is unknown.
// Pure functions; any thread.
#pragma once

#include "ConversionEngine/progress/ConversionPhase.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace Ondrilet {

class ProgressTexts
{
public:
    // The colour a phase is shown in, named; the views choose the shade.
    enum class PhaseColor
    {
        blue,
        yellow,
        indigo,
        purple,
        orange,
        green,
    };

    // A fraction as a whole percentage, "%lld%%": 0.426 gives "42%". Not finite reads as 0.
    static QString percentText(double fraction);
    // N " of " M " files completed".
    static QString filesCompletedText(std::int64_t completed, std::int64_t total);
    // "%.1f MB/s", "%.1f MB", "%.1f%%". A speed that is no finite number, as one measured over no
    // time at all, reads as "0.0 MB/s".
    static QString speedText(double megabytesPerSecond);
    static QString megabytesText(double megabytes);
    static QString ratioText(double percent);
    // A byte count in megabytes (2^20 bytes), "%.1f MB".
    static QString sizeText(std::int64_t bytes);
    // The duration text, or nothing when the time is unknown.
    static std::optional<QString> durationOrNothing(const std::optional<double>& seconds);
    // "Time remaining: " and "ETA: " with the duration, or no line at all when it is unknown.
    static std::optional<QString> timeRemainingLine(const std::optional<double>& seconds);
    static std::optional<QString> etaLine(const std::optional<double>& seconds);

    static PhaseColor phaseColor(ConversionEngine::ConversionPhase phase);

    // Digits with a point, whatever the locale, through the program's one formatter: how every
    // number above is written.
    static QString fixedDecimals(double value, int decimals);
};

} // namespace Ondrilet
