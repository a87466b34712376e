// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/WholeNumber.h"

#include <limits>

namespace Ondrilet {

std::optional<qint64> WholeNumber::parse(const QString& text)
{
    qsizetype position = 0;
    bool negative = false;
    if (!text.isEmpty() && (text.front() == u'+' || text.front() == u'-')) {
        negative = text.front() == u'-';
        position = 1;
    }
    if (position == text.size())
        return std::nullopt;

    // Accumulated towards the negative side, which holds one more value than the positive side.
    constexpr qint64 lowest = std::numeric_limits<qint64>::min();
    qint64 value = 0;
    for (; position < text.size(); ++position) {
        const QChar character = text.at(position);
        if (character < u'0' || character > u'9')
            return std::nullopt;
        const int digit = character.unicode() - u'0';
        if (value < (lowest + digit) / 10)
            return std::nullopt;
        value = value * 10 - digit;
    }
    if (negative)
        return value;
    if (value == lowest)
        return std::nullopt;
    return -value;
}

} // namespace Ondrilet
