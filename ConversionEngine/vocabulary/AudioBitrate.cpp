// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/AudioBitrate.h"

namespace ConversionEngine {

std::optional<AudioBitrate> audioBitrateFromRawValue(int bitsPerSecond)
{
    return audioBitrateTable.fromRawValue(bitsPerSecond);
}

QString displayName(AudioBitrate bitrate)
{
    return QString::number(rawValue(bitrate) / 1000) + QStringLiteral(" kbps");
}

bool isOptimalForHEAACv2(AudioBitrate bitrate)
{
    switch (bitrate) {
    case AudioBitrate::kbps16:
    case AudioBitrate::kbps24:
    case AudioBitrate::kbps32:
        return true;
    default:
        return false;
    }
}

bool isOptimalForHEAAC(AudioBitrate bitrate)
{
    switch (bitrate) {
    case AudioBitrate::kbps24:
    case AudioBitrate::kbps32:
    case AudioBitrate::kbps48:
    case AudioBitrate::kbps64:
        return true;
    default:
        return false;
    }
}

bool isOptimalForAAC(AudioBitrate bitrate)
{
    switch (bitrate) {
    case AudioBitrate::kbps128:
    case AudioBitrate::kbps192:
    case AudioBitrate::kbps256:
    case AudioBitrate::kbps320:
        return true;
    default:
        return false;
    }
}

} // namespace ConversionEngine
