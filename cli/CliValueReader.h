// SPDX-License-Identifier: GPL-3.0-or-later
// Reads the value of one option as the panel control it stands for would accept it, and throws
// UsageError, naming the option, for anything else. Used by the handlers of the option table.
// Any thread.
#pragma once

#include "cli/CliOption.h"

#include <QDateTime>
#include <QString>

#include <array>
#include <cstddef>

namespace Ondrilet {

class CliValueReader
{
public:
    // The position of `value` in the option's list of choices.
    static qsizetype choiceIndex(const CliOption& option, const QString& value);

    // The case of `cases` at the position of `value` in the option's choices, which list the
    // cases in the same order.
    template <typename T, std::size_t N>
    static T chosen(const CliOption& option, const QString& value, const std::array<T, N>& cases)
    {
        return cases[std::size_t(choiceIndex(option, value))];
    }

    static int wholeNumberIn(const CliOption& option, const QString& value, int lowest,
                             int highest);
    // A dBFS value the panel's slider can reach: -20.0 to -0.2 in steps of 0.1.
    static float peakTarget(const CliOption& option, const QString& value);
    // A date as 2024-05-01 or 2024-05-01T10:30:00.
    static QDateTime isoDate(const CliOption& option, const QString& value);
};

} // namespace Ondrilet
