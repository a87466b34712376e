// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/batch/ProgressTexts.h"

#include "ConversionEngine/core/FixedDecimals.h"
#include "app/batch/DurationText.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Ondrilet {

QString ProgressTexts::fixedDecimals(double value, int decimals)
{
    return QString::fromStdString(ConversionEngine::FixedDecimals::text(value, decimals));
}

QString ProgressTexts::percentText(double fraction)
{
    const double percent = fraction * 100.0;
    if (!std::isfinite(percent))
        return QStringLiteral("0%");
    const double limit = double(std::numeric_limits<long long>::max());
    const long long whole = static_cast<long long>(std::clamp(std::trunc(percent), -limit, limit));
    return QString::number(whole) + QLatin1Char('%');
}

QString ProgressTexts::filesCompletedText(std::int64_t completed, std::int64_t total)
{
    return QString::number(completed) + QStringLiteral(" of ") + QString::number(total) +
           QStringLiteral(" files completed");
}

QString ProgressTexts::speedText(double megabytesPerSecond)
{
    // The first report of a file can come in the same instant as its start: no time has passed,
    // nothing is measured yet, and the speed divides by zero.
    if (!std::isfinite(megabytesPerSecond))
        megabytesPerSecond = 0.0;
    return fixedDecimals(megabytesPerSecond, 1) + QStringLiteral(" MB/s");
}

QString ProgressTexts::megabytesText(double megabytes)
{
    return fixedDecimals(megabytes, 1) + QStringLiteral(" MB");
}

QString ProgressTexts::ratioText(double percent)
{
    return fixedDecimals(percent, 1) + QLatin1Char('%');
}

QString ProgressTexts::sizeText(std::int64_t bytes)
{
    return megabytesText(double(bytes) / (1024.0 * 1024.0));
}

std::optional<QString> ProgressTexts::durationOrNothing(const std::optional<double>& seconds)
{
    if (!seconds || !std::isfinite(*seconds))
        return std::nullopt;
    return durationText(*seconds);
}

std::optional<QString> ProgressTexts::timeRemainingLine(const std::optional<double>& seconds)
{
    const std::optional<QString> text = durationOrNothing(seconds);
    if (!text)
        return std::nullopt;
    return QStringLiteral("Time remaining: ") + *text;
}

std::optional<QString> ProgressTexts::etaLine(const std::optional<double>& seconds)
{
    const std::optional<QString> text = durationOrNothing(seconds);
    if (!text)
        return std::nullopt;
    return QStringLiteral("ETA: ") + *text;
}

ProgressTexts::PhaseColor ProgressTexts::phaseColor(ConversionEngine::ConversionPhase phase)
{
    using ConversionEngine::ConversionPhase;
    switch (phase) {
    case ConversionPhase::initializing:
    case ConversionPhase::loading:
        return PhaseColor::blue;
    case ConversionPhase::verifying:
        return PhaseColor::yellow;
    case ConversionPhase::finalizing:
    case ConversionPhase::writing:
        return PhaseColor::indigo;
    case ConversionPhase::analyzing:
        return PhaseColor::purple;
    case ConversionPhase::configuring:
        return PhaseColor::orange;
    default:
        return PhaseColor::green;
    }
}

} // namespace Ondrilet
