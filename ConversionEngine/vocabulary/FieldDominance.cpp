// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/FieldDominance.h"

namespace ConversionEngine {

QString caseName(FieldDominance dominance)
{
    return fieldDominanceTable.rawValue(dominance);
}

QString displayName(FieldDominance dominance)
{
    return fieldDominanceTable.displayText(dominance);
}

QString shortName(FieldDominance dominance)
{
    switch (dominance) {
    case FieldDominance::progressive:
        return QStringLiteral("Progressive");
    case FieldDominance::topFieldFirst:
        return QStringLiteral("TFF");
    case FieldDominance::bottomFieldFirst:
        return QStringLiteral("BFF");
    }
    return {};
}

QString description(FieldDominance dominance)
{
    switch (dominance) {
    case FieldDominance::progressive:
        return QStringLiteral("Non-interlaced content (progressive scan)");
    case FieldDominance::topFieldFirst:
        return QStringLiteral("Interlaced with top field displayed first (common in PAL)");
    case FieldDominance::bottomFieldFirst:
        return QStringLiteral("Interlaced with bottom field displayed first (common in NTSC)");
    }
    return {};
}

QString symbolName(FieldDominance dominance)
{
    switch (dominance) {
    case FieldDominance::progressive:
        return QStringLiteral("tv");
    case FieldDominance::topFieldFirst:
        return QStringLiteral("arrow.up.tv");
    case FieldDominance::bottomFieldFirst:
        return QStringLiteral("arrow.down.tv");
    }
    return {};
}

} // namespace ConversionEngine
