// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/naming/DateTexts.h"

#include <QRegularExpression>

namespace Ondrilet {

QString DateTexts::mediumDatePattern(const QLocale& locale)
{
    // Qt offers no medium date; the long one without the weekday and with short month names
    // comes closest in every locale.
    QString pattern = locale.dateFormat(QLocale::LongFormat);
    static const QRegularExpression weekday(QStringLiteral("[,\\s]*d{4}[,\\s]*"));
    static const QRegularExpression edges(QStringLiteral("^[,\\s]+|[,\\s]+$"));
    pattern.replace(weekday, QStringLiteral(" "));
    pattern.replace(edges, QString());
    pattern.replace(QStringLiteral("MMMM"), QStringLiteral("MMM"));
    return pattern;
}

QString DateTexts::mediumDateShortTime(const QDateTime& date, const QLocale& locale)
{
    const QDateTime local = date.toLocalTime();
    return locale.toString(local.date(), mediumDatePattern(locale)) + QStringLiteral(", ") +
           locale.toString(local.time(), QLocale::ShortFormat);
}

QString DateTexts::fileNameDate(const QDateTime& date, const QLocale& locale)
{
    return locale.toString(date.toLocalTime().date(), QStringLiteral("yyyy-MM-dd"));
}

QString DateTexts::consoleText(const QDateTime& date)
{
    return date.toUTC().toString(Qt::ISODate);
}

} // namespace Ondrilet
