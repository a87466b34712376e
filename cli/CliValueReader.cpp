// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CliValueReader.h"

#include "cli/UsageError.h"

#include <cmath>

namespace Ondrilet {

qsizetype CliValueReader::choiceIndex(const CliOption& option, const QString& value)
{
    const qsizetype index = option.choices.indexOf(value);
    if (index < 0)
        throw UsageError(QStringLiteral("%1: '%2' is not one of %3")
                             .arg(option.name, value, option.choices.join(QStringLiteral(", "))));
    return index;
}

int CliValueReader::wholeNumberIn(const CliOption& option, const QString& value, int lowest,
                                  int highest)
{
    bool ok = false;
    const int number = value.toInt(&ok);
    if (!ok || number < lowest || number > highest)
        throw UsageError(QStringLiteral("%1: '%2' is not a whole number from %3 to %4")
                             .arg(option.name, value)
                             .arg(lowest)
                             .arg(highest));
    return number;
}

float CliValueReader::peakTarget(const CliOption& option, const QString& value)
{
    bool ok = false;
    const double number = value.toDouble(&ok);
    const double tenths = std::round(number * 10.0);
    if (!ok || !std::isfinite(number) || tenths < -200.0 || tenths > -2.0 ||
        std::abs(number * 10.0 - tenths) > 1e-6)
        throw UsageError(
            QStringLiteral("%1: '%2' is not a level from -20.0 to -0.2 in steps of 0.1")
                .arg(option.name, value));
    return float(tenths / 10.0);
}

QDateTime CliValueReader::isoDate(const CliOption& option, const QString& value)
{
    QDateTime date = QDateTime::fromString(value, Qt::ISODateWithMs);
    if (!date.isValid()) {
        const QDate day = QDate::fromString(value, Qt::ISODate);
        if (day.isValid())
            date = day.startOfDay();
    }
    if (!date.isValid())
        throw UsageError(QStringLiteral("%1: '%2' is not an ISO 8601 date such as 2024-05-01 or "
                                        "2024-05-01T10:30:00")
                             .arg(option.name, value));
    return date;
}

} // namespace Ondrilet
