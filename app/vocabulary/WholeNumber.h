// SPDX-License-Identifier: GPL-3.0-or-later
// Reading a whole number out of text the user or a drag session gave: the whole text must be
// decimal digits with at most one leading sign. Any thread.
#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

namespace Ondrilet {

class WholeNumber
{
public:
    // "1999" → 1999, "+5" → 5, "-3" → -3; "1999a", " 5", "", "+" and anything beyond the 64-bit
    // range → nothing.
    static std::optional<qint64> parse(const QString& text);
};

} // namespace Ondrilet
