// SPDX-License-Identifier: GPL-3.0-or-later
// How the main window and its console lines write dates: the panel's medium date with a short
// time in the current locale, the file name's day, and the one form console lines use.
// Pure functions; any thread.
#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace Ondrilet {

class DateTexts
{
public:
    // The locale's long date without its weekday and with abbreviated month names, then ", "
    // and the locale's short time, in local time: "Mar 4, 2021, 3:05 PM" in American English.
    static QString mediumDateShortTime(const QDateTime& date, const QLocale& locale = QLocale());

    // "2021-03-04" in local time, as the output name carries it.
    static QString fileNameDate(const QDateTime& date, const QLocale& locale = QLocale());

    // "2021-03-04T10:20:30Z": ISO 8601 in UTC, the form every console line uses for a date.
    static QString consoleText(const QDateTime& date);

    // The date pattern behind mediumDateShortTime: "MMM d, yyyy" in American English.
    static QString mediumDatePattern(const QLocale& locale = QLocale());
};

} // namespace Ondrilet
