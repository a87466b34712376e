// SPDX-License-Identifier: GPL-3.0-or-later
// One video track of an inspected file: its place among the video tracks, codec, size, rate,
// data rate, whether it is interlaced and which field comes first. Read from a track by an
// asynchronous load on the main thread; the record itself is a plain value for any thread.
#pragma once

#include "ConversionEngine/core/InterlacingRules.h"
#include "ConversionEngine/vocabulary/FieldDominance.h"
#include "platform/media/AssetTrack.h"

#include <QCoro/QCoroTask>
#include <QSizeF>
#include <QString>
#include <QUuid>

#include <optional>

namespace ConversionEngine {

struct VideoStreamAnalysis;

struct VideoStream
{
    QUuid id;
    // Place among the file's video tracks, from 0.
    int index = 0;
    QString codec;
    // The track's natural size; its transform is not applied.
    QSizeF resolution;
    double frameRate = 0.0;
    // Bits per second, as the file's data rate estimates it.
    qint64 bitrate = 0;
    bool isInterlaced = false;
    std::optional<FieldDominance> fieldDominance;
    // Width over height of `resolution`.
    double aspectRatio = 0.0;

    // The track's first format description (invalidVideoTrack without one), then its size,
    // rates and interlacing. The media layer's errors pass through unchanged.
    static QCoro::Task<VideoStream> fromTrack(Platform::AssetTrack track, int index);
    // The same, with what decided the interlacing and the field order.
    static QCoro::Task<VideoStreamAnalysis> analyzeTrack(Platform::AssetTrack track, int index);

    friend bool operator==(const VideoStream&, const VideoStream&) = default;
};

// A video stream with the steps that decided its interlacing and its field order, for callers
// that show how the stream was judged.
struct VideoStreamAnalysis
{
    VideoStream stream;
    InterlacingVerdict interlacing;
    FieldDominanceStep fieldDominanceStep = FieldDominanceStep::interlacingDetection;
};

} // namespace ConversionEngine
