// SPDX-License-Identifier: GPL-3.0-or-later
// One audio track of an inspected file: its place among the audio tracks, codec, rate, channels,
// depth and, for uncompressed audio, its bit rate. Read from a track by an asynchronous load on
// the main thread; the record itself is a plain value for any thread.
#pragma once

#include "platform/media/AssetTrack.h"

#include <QCoro/QCoroTask>
#include <QString>
#include <QUuid>

#include <optional>

namespace ConversionEngine {

struct AudioStream
{
    QUuid id;
    // Place among the file's audio tracks, from 0.
    int index = 0;
    QString codec;
    qint64 sampleRate = 0;
    int channels = 0;
    // 0 for compressed audio, which has no fixed depth.
    int bitDepth = 0;
    // Bits per second; only for audio with a fixed depth.
    std::optional<qint64> bitrate;

    // The track's first format description: invalidAudioTrack without one, invalidAudioFormat
    // when it has no stream basic description. The media layer's errors pass through unchanged.
    static QCoro::Task<AudioStream> fromTrack(Platform::AssetTrack track, int index);

    friend bool operator==(const AudioStream&, const AudioStream&) = default;
};

} // namespace ConversionEngine
