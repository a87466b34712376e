// SPDX-License-Identifier: GPL-3.0-or-later
// The analysis pass of a peak target: opens the file itself, decodes its first audio track and
// returns the largest sample magnitude over all channels, linear and in dB. Main thread only:
// after the asynchronous track load the pass runs to its end on the caller's thread.
#pragma once

#include "ConversionEngine/core/LevelGain.h"

#include <QCoro/QCoroTask>
#include <QString>

namespace Platform {
class Asset;
class AssetTrack;
} // namespace Platform

namespace ConversionEngine {

class PeakLevelPass
{
public:
    PeakLevelPass() = delete;

    // Throws ConversionError when the file has no audio track or the reader cannot be set up,
    // and the media layer's MediaError unchanged when the file cannot be opened.
    static QCoro::Task<PeakLevel> measurePeakLevel(QString url);

    // The reading half, synchronous, for a track of `asset`.
    static PeakLevel measureTrack(const Platform::Asset& asset, const Platform::AssetTrack& track);
};

} // namespace ConversionEngine
