// SPDX-License-Identifier: GPL-3.0-or-later
// Which field of an interlaced frame comes first, or that the frame is progressive, with the
// texts the front end shows for it. Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>

namespace ConversionEngine {

enum class FieldDominance
{
    progressive,
    topFieldFirst,
    bottomFieldFirst,
};

// The case's own name ("topFieldFirst"), as console lines print it.
QString caseName(FieldDominance dominance);
QString displayName(FieldDominance dominance);
QString shortName(FieldDominance dominance);
QString description(FieldDominance dominance);
QString symbolName(FieldDominance dominance);

// Every case in declared order, with its case name (the raw value) and display name.
inline constexpr auto fieldDominanceTable = enumTable<FieldDominance, QStringView>({
    {FieldDominance::progressive, u"progressive", u"Progressive"},
    {FieldDominance::topFieldFirst, u"topFieldFirst", u"Top Field First"},
    {FieldDominance::bottomFieldFirst, u"bottomFieldFirst", u"Bottom Field First"},
});
static_assert(fieldDominanceTable.hasDistinctCases());

inline const auto& allFieldDominances()
{
    return fieldDominanceTable.allCases();
}

} // namespace ConversionEngine
