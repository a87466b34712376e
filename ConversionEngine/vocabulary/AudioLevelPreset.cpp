// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/AudioLevelPreset.h"

#include <QtGlobal>

#include <cmath>
#include <cstdint>

namespace ConversionEngine {

namespace {

// 2^63 is exactly representable as a float; every float below it and at or above -2^63
// truncates to a 64-bit integer.
constexpr float twoToThe63 = 9223372036854775808.0f;

std::int64_t truncatedOrTrap(float lufs)
{
    if (!std::isfinite(lufs) || lufs >= twoToThe63 || lufs < -twoToThe63) {
        const QString text =
            QStringLiteral("Custom loudness value has no whole-number form: %1").arg(lufs);
        qFatal("%s", qPrintable(text));
    }
    return static_cast<std::int64_t>(lufs);
}

} // namespace

QString displayName(const AudioLevelPreset& preset)
{
    switch (preset.kind) {
    case AudioLevelPreset::Kind::custom:
        return QStringLiteral("Custom (") + QString::number(truncatedOrTrap(preset.customLufs)) +
               QStringLiteral(" LUFS)");
    case AudioLevelPreset::Kind::ebur128:
        return QStringLiteral("EBU R128 (-23 LUFS)");
    case AudioLevelPreset::Kind::atsc:
        return QStringLiteral("ATSC A/85 (-24 LUFS)");
    case AudioLevelPreset::Kind::talkoverBed:
        return QStringLiteral("Talkover Bed (-33 LUFS)");
    case AudioLevelPreset::Kind::spotify:
        return QStringLiteral("Spotify (-14 LUFS)");
    case AudioLevelPreset::Kind::youtube:
        return QStringLiteral("YouTube (-13 LUFS)");
    }
    return {};
}

float lufsValue(const AudioLevelPreset& preset)
{
    switch (preset.kind) {
    case AudioLevelPreset::Kind::custom:
        return preset.customLufs;
    case AudioLevelPreset::Kind::ebur128:
        return -23.0f;
    case AudioLevelPreset::Kind::atsc:
        return -24.0f;
    case AudioLevelPreset::Kind::talkoverBed:
        return -33.0f;
    case AudioLevelPreset::Kind::spotify:
        return -14.0f;
    case AudioLevelPreset::Kind::youtube:
        return -13.0f;
    }
    return 0.0f;
}

} // namespace ConversionEngine
