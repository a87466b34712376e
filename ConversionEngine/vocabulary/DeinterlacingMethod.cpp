// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/DeinterlacingMethod.h"

namespace ConversionEngine {

namespace {

QString shortName(DeinterlacingMethod method)
{
    switch (method) {
    case DeinterlacingMethod::yadif:
        return QStringLiteral("YADIF");
    case DeinterlacingMethod::bwdif:
        return QStringLiteral("BWDIF");
    case DeinterlacingMethod::w3fdif:
        return QStringLiteral("W3FDIF");
    case DeinterlacingMethod::linearBlend:
        return QStringLiteral("Linear Blend");
    case DeinterlacingMethod::bob:
        return QStringLiteral("Bob");
    }
    return {};
}

} // namespace

QString rawValue(DeinterlacingMethod method)
{
    return deinterlacingMethodTable.rawValue(method);
}

std::optional<DeinterlacingMethod> deinterlacingMethodFromRawValue(const QString& raw)
{
    return deinterlacingMethodTable.fromRawValue(raw);
}

int speedRating(DeinterlacingMethod method)
{
    switch (method) {
    case DeinterlacingMethod::yadif:
        return 2;
    case DeinterlacingMethod::bwdif:
        return 3;
    case DeinterlacingMethod::w3fdif:
        return 1;
    case DeinterlacingMethod::linearBlend:
        return 4;
    case DeinterlacingMethod::bob:
        return 5;
    }
    return 0;
}

int qualityRating(DeinterlacingMethod method)
{
    // Quality runs opposite to speed for every filter on the list.
    const int speed = speedRating(method);
    return speed == 0 ? 0 : 6 - speed;
}

QString performanceText(DeinterlacingMethod method)
{
    return QStringLiteral("%1 - Speed: %2/5 - Quality: %3/5")
        .arg(shortName(method))
        .arg(speedRating(method))
        .arg(qualityRating(method));
}

QString description(DeinterlacingMethod method)
{
    switch (method) {
    case DeinterlacingMethod::yadif:
        return QStringLiteral(
            "High quality, good for most content. Provides excellent edge preservation.");
    case DeinterlacingMethod::bwdif:
        return QStringLiteral("Fast processing, ideal for sports and high-motion content.");
    case DeinterlacingMethod::w3fdif:
        return QStringLiteral(
            "Best quality available, slower processing. Ideal for archival work.");
    case DeinterlacingMethod::linearBlend:
        return QStringLiteral("Simple and fast processing with good compatibility.");
    case DeinterlacingMethod::bob:
        return QStringLiteral("Fastest processing, lower quality. Good for real-time preview.");
    }
    return {};
}

QString recommendedFor(DeinterlacingMethod method)
{
    switch (method) {
    case DeinterlacingMethod::yadif:
        return QStringLiteral("General purpose, films, documentaries");
    case DeinterlacingMethod::bwdif:
        return QStringLiteral("Sports, news, high-motion content");
    case DeinterlacingMethod::w3fdif:
        return QStringLiteral("Archival work, film restoration");
    case DeinterlacingMethod::linearBlend:
        return QStringLiteral("Quick conversion, previews");
    case DeinterlacingMethod::bob:
        return QStringLiteral("Real-time playback, streaming");
    }
    return {};
}

} // namespace ConversionEngine
