// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/MeasureReport.h"

#include <QLocale>
#include <QStringList>

#include <cmath>
#include <utility>

namespace Ondrilet {

QString MeasureReport::json(const QString& file, const ConversionEngine::LoudnessResult& loudness,
                            const ConversionEngine::PeakLevel& peak)
{
    const std::pair<const char*, QString> members[] = {
        {"file", string(file)},
        {"integratedLUFS", number(loudness.integratedLUFS)},
        {"ungatedLUFS", number(loudness.ungatedLUFS)},
        {"effectiveGateLUFS", number(loudness.effectiveGateLUFS)},
        {"truePeakDBTP", number(loudness.truePeakDBTP)},
        {"peakDB", number(peak.decibels)},
        {"peakLinear", number(peak.linear)},
    };
    QStringList lines;
    for (const auto& [key, value] : members)
        lines.append(QStringLiteral("  \"%1\": %2").arg(QLatin1String(key), value));
    return QStringLiteral("{\n") + lines.join(QStringLiteral(",\n")) + QStringLiteral("\n}\n");
}

QString MeasureReport::number(float value)
{
    if (!std::isfinite(value))
        return QStringLiteral("null");
    // Nine significant digits always read back exactly; fewer often do and read better. The
    // fewest that do give a decimal, written out in its shortest form ("-240", not "-2.4e+02").
    int digits = 1;
    while (digits < 9 && QString::number(double(value), 'g', digits).toFloat() != value)
        ++digits;
    const double decimal = QString::number(double(value), 'g', digits).toDouble();
    return QString::number(decimal, 'g', QLocale::FloatingPointShortest);
}

QString MeasureReport::string(const QString& text)
{
    QString quoted = QStringLiteral("\"");
    for (const QChar c : text) {
        if (c == QLatin1Char('"'))
            quoted += QStringLiteral("\\\"");
        else if (c == QLatin1Char('\\'))
            quoted += QStringLiteral("\\\\");
        else if (c == QLatin1Char('\n'))
            quoted += QStringLiteral("\\n");
        else if (c == QLatin1Char('\t'))
            quoted += QStringLiteral("\\t");
        else if (c.unicode() < 0x20)
            quoted += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            quoted += c;
    }
    return quoted + QLatin1Char('"');
}

} // namespace Ondrilet
