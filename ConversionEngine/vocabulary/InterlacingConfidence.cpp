// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/InterlacingConfidence.h"

namespace ConversionEngine {

QString rawValue(InterlacingConfidence confidence)
{
    return interlacingConfidenceTable.rawValue(confidence);
}

std::optional<InterlacingConfidence> interlacingConfidenceFromRawValue(const QString& raw)
{
    return interlacingConfidenceTable.fromRawValue(raw);
}

QString color(InterlacingConfidence confidence)
{
    switch (confidence) {
    case InterlacingConfidence::certain:
        return QStringLiteral("green");
    case InterlacingConfidence::likely:
        return QStringLiteral("yellow");
    case InterlacingConfidence::uncertain:
        return QStringLiteral("orange");
    case InterlacingConfidence::progressive:
        return QStringLiteral("blue");
    }
    return {};
}

} // namespace ConversionEngine
