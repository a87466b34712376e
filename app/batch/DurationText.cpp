// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/batch/DurationText.h"

#include <QtGlobal>

#include <cmath>
#include <cstdint>

namespace Ondrilet {

QString durationText(double seconds)
{
    const double truncated = std::trunc(seconds);
    // 2^63 is exactly representable; anything at or past it has no whole-number reading.
    if (!std::isfinite(truncated) || truncated >= 9223372036854775808.0 ||
        truncated < -9223372036854775808.0)
        qFatal("Duration out of range: %f", seconds);
    const auto total = static_cast<std::int64_t>(truncated);
    const std::int64_t hours = total / 3600;
    const std::int64_t minutes = (total % 3600) / 60;
    const std::int64_t rest = total % 60;
    if (total >= 3600)
        return QStringLiteral("%1h %2m %3s").arg(hours).arg(minutes).arg(rest);
    if (total < 60)
        return QStringLiteral("%1s").arg(total);
    return QStringLiteral("%1m %2s").arg(minutes).arg(rest);
}

} // namespace Ondrilet
