// SPDX-License-Identifier: GPL-3.0-or-later
// Decides whether a video track is interlaced and which field it shows first: the format
// description's field keys when it has them, else guesses from the file name, the picture size
// and the frame rate. Each decision prints one console line saying what decided it. The
// asynchronous steps run on the main thread (their loads wait for the asset's probe).
#pragma once

#include "ConversionEngine/core/InterlacingRules.h"
#include "ConversionEngine/vocabulary/FieldDominance.h"
#include "platform/media/AssetTrack.h"
#include "platform/media/FormatDescription.h"

#include <QCoro/QCoroTask>

#include <optional>

namespace ConversionEngine {

class InterlacingDetector
{
public:
    InterlacingDetector() = delete;

    // The keys as the rules read them: "IsInterlaced" only as a boolean, the three counts and
    // details only as integers; a key held as any other type (text, a fraction) counts as absent.
    static FieldKeys fieldKeys(const Platform::SettingsDictionary& extensions);

    // The keys in their order, then the heuristic; the verdict says which step answered.
    static QCoro::Task<InterlacingVerdict>
    detectInterlacing(Platform::AssetTrack track, Platform::FormatDescription description);

    // "FieldDetail", then "FieldCount", then a run of detectInterlacing, which therefore may run
    // (and print) a second time for the same track.
    static QCoro::Task<FieldDominanceVerdict>
    detectFieldDominance(Platform::AssetTrack track, Platform::FormatDescription description);

    // The engine's field order for core's, case by case.
    static FieldDominance fieldDominance(FieldDominanceKind kind);
    static FieldDominanceKind fieldDominanceKind(FieldDominance dominance);

private:
    static QCoro::Task<InterlacingVerdict> runHeuristic(Platform::AssetTrack track);
    static void printKeyVerdict(const InterlacingVerdict& verdict);
    static void printHeuristicVerdict(const InterlacingVerdict& verdict,
                                      const QString& lowerCasedName);
};

} // namespace ConversionEngine
