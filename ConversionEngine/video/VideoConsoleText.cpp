// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/video/VideoConsoleText.h"

#include <QLocale>

#include <cmath>

namespace ConversionEngine {

namespace {

// Whole numbers below this print without an exponent.
constexpr double plainWholeLimit = 1e16;

template <typename Real>
QString shortest(Real value)
{
    if (std::isnan(value))
        return QStringLiteral("nan");
    if (std::isinf(value))
        return value > 0 ? QStringLiteral("inf") : QStringLiteral("-inf");
    if (value == std::trunc(value) && std::abs(value) < plainWholeLimit)
        return QString::number(static_cast<qint64>(value)) + QStringLiteral(".0");
    return QString::number(static_cast<double>(value), 'g',
                           std::is_same_v<Real, float> ? 9 : QLocale::FloatingPointShortest);
}

} // namespace

QString VideoConsoleText::number(double value)
{
    return shortest(value);
}

QString VideoConsoleText::number(float value)
{
    // The shortest form of the float itself, not of the double it widens to.
    if (std::isfinite(value) && value != std::trunc(value)) {
        for (int digits = 1; digits <= 9; ++digits) {
            const QString text = QString::number(static_cast<double>(value), 'g', digits);
            if (text.toFloat() == value)
                return text;
        }
    }
    return shortest(value);
}

QString VideoConsoleText::fixed(double value, int decimals)
{
    return QString::number(value, 'f', decimals);
}

} // namespace ConversionEngine
