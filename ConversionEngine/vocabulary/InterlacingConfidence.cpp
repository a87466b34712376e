#include "ConversionEngine/vocabulary/InterlacingConfidence.h"

namespace ConversionEngine {

QString rawValue(InterlacingConfidence confidence)
{
    switch (confidence) {
    case InterlacingConfidence::certain:
        return QStringLiteral("Certain");
    case InterlacingConfidence::likely:
        return QStringLiteral("Likely");
    case InterlacingConfidence::uncertain:
        return QStringLiteral("Uncertain");
    case InterlacingConfidence::progressive:
        return QStringLiteral("Progressive");
    }
    return {};
}

std::optional<InterlacingConfidence> interlacingConfidenceFromRawValue(const QString& raw)
{
    for (InterlacingConfidence confidence : allInterlacingConfidences())
        if (rawValue(confidence) == raw)
            return confidence;
    return std::nullopt;
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
