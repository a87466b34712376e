// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ProgressBarText.h"

#include "app/batch/DurationText.h"

#include <algorithm>
#include <cmath>

namespace Ondrilet {

namespace {

double clampedFraction(double fraction)
{
    if (!std::isfinite(fraction))
        return 0.0;
    return std::clamp(fraction, 0.0, 1.0);
}

QString remainingText(std::optional<double> seconds)
{
    // The time text accepts only what fits a whole count of seconds.
    if (!seconds || !std::isfinite(*seconds) || *seconds < 0.0 || *seconds > 1e12)
        return QStringLiteral("--");
    return durationText(*seconds);
}

} // namespace

QString ProgressBarText::render(double fraction, std::optional<double> remainingSeconds,
                                const QString& status, int columns)
{
    const double done = clampedFraction(fraction);
    const int filled = int(std::floor(done * barCells));
    const int percent = int(std::floor(done * 100.0));

    QString line = QString(filled, QChar(0x2588)) + QString(barCells - filled, QChar(0x2591));
    line += QStringLiteral(" %1%").arg(percent, 3);
    line += QStringLiteral("  ETA ") + remainingText(remainingSeconds);
    if (!status.isEmpty())
        line += QStringLiteral("  ") + status;

    const qsizetype limit = std::max(columns - 1, 0);
    if (line.size() > limit) {
        line.truncate(limit);
        // Never leave half of a character that takes two code units.
        if (!line.isEmpty() && line.back().isHighSurrogate())
            line.chop(1);
    }
    return line;
}

} // namespace Ondrilet
