// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/QualityMode.h"

namespace ConversionEngine {

QString displayName(const QualityMode& mode)
{
    switch (mode.kind) {
    case QualityMode::Kind::constant:
        return QStringLiteral("CRF %1").arg(mode.crf);
    case QualityMode::Kind::averageBitrate:
        return QStringLiteral("%1 kbps").arg(mode.bitrate);
    case QualityMode::Kind::variableBitrate:
        return QStringLiteral("VBR %1-%2 kbps").arg(mode.min).arg(mode.max);
    case QualityMode::Kind::twoPassVBR:
        return QStringLiteral("2-Pass VBR %1 kbps (%2-%3)")
            .arg(mode.target)
            .arg(mode.min)
            .arg(mode.max);
    }
    return {};
}

} // namespace ConversionEngine
