// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/vocabulary/OutputFormat.h"

namespace Ondrilet {

QString fileExtension(const OutputFormat& format)
{
    const QString raw =
        format.isVideo() ? rawValue(format.videoFormat) : rawValue(format.audioFormat);
    return raw.toLower();
}

QString displayName(const OutputFormat& format)
{
    if (format.isVideo())
        return QStringLiteral("Video (%1)").arg(rawValue(format.videoFormat));
    return QStringLiteral("Audio (%1)").arg(rawValue(format.audioFormat).toUpper());
}

QString caseText(const OutputFormat& format)
{
    // Every case name of both inner formats is its raw value in lower case.
    if (format.isVideo())
        return QStringLiteral("video(%1)").arg(fileExtension(format));
    return QStringLiteral("audio(%1)").arg(fileExtension(format));
}

} // namespace Ondrilet
