// SPDX-License-Identifier: GPL-3.0-or-later
// The engine's description of one media file. Construction looks only at the file system and the
// extension; the asynchronous analysis opens the file and adds its duration and its tracks.
// Construction may run on any thread; the analysis runs on the main thread and suspends while
// the media layer probes the file. The record itself is a plain value.
#pragma once

#include "ConversionEngine/inspection/AudioStream.h"
#include "ConversionEngine/inspection/VideoStream.h"
#include "ConversionEngine/vocabulary/MediaType.h"

#include <QCoro/QCoroTask>
#include <QSizeF>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <optional>
#include <vector>

namespace ConversionEngine {

struct MediaFileAnalysis;

struct MediaFile
{
    // New for each construction; the analysis keeps it.
    QUuid id;
    QUrl url;
    // The last path component.
    QString name;
    // What follows the name's last dot, lower-cased; empty when there is none.
    QString fileExtension;
    qint64 fileSize = 0;
    // From the extension at construction, from the tracks found after analysis.
    MediaType mediaType = MediaType::unknown;

    // The fields below are set by the analysis only.
    // Seconds; absent when the container states no duration.
    std::optional<double> duration;
    std::optional<std::vector<VideoStream>> videoStreams;
    std::optional<std::vector<AudioStream>> audioStreams;
    // Of the first video stream: none of the three speaks of audio.
    std::optional<QSizeF> resolution;
    std::optional<double> frameRate;
    std::optional<qint64> bitrate;

    // Reads the file's size (the file-system error of a failed read passes through unchanged)
    // and throws emptyFile for a file of no bytes. An extension that names no media is no error.
    static MediaFile fromUrl(const QUrl& url);

    // A copy of `file` with every analysis field set. One track's failure ends the whole
    // analysis; the media layer's errors pass through unchanged.
    static QCoro::Task<MediaFile> analyze(MediaFile file);
    // The same, with what decided the interlacing of each video stream.
    static QCoro::Task<MediaFileAnalysis> analyzeInDetail(MediaFile file);

    friend bool operator==(const MediaFile&, const MediaFile&) = default;
};

struct MediaFileAnalysis
{
    MediaFile file;
    // One per video stream, in the order of file.videoStreams.
    std::vector<VideoStreamAnalysis> videoStreams;
};

} // namespace ConversionEngine
