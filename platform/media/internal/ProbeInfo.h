// SPDX-License-Identifier: GPL-3.0-or-later
// What one look at a media file found: its duration and its tracks, in plain values. The probe
// runs once per asset, on whatever thread first needs it. Media layer internals only.
#pragma once

#include "platform/media/AffineTransform.h"
#include "platform/media/FormatDescription.h"
#include "platform/media/MediaTime.h"
#include "platform/media/MediaType.h"
#include "platform/media/Size.h"

#include <QString>

#include <utility>
#include <vector>

namespace Platform::Internal {

struct TrackInfo
{
    // The container's stream index; the track's identity within its asset.
    int streamIndex = -1;
    MediaType mediaType = MediaType::audio;
    bool isEnabled = true;
    std::vector<FormatDescription> formatDescriptions;
    // Video only.
    Size naturalSize;
    AffineTransform preferredTransform;
    float nominalFrameRate = 0.0F;
    float estimatedDataRate = 0.0F;
};

struct ProbeInfo
{
    // Invalid when the container does not tell.
    MediaTime duration = MediaTime::invalid();
    QString containerName;
    // Audio and video tracks in stream order; cover pictures and other streams are not tracks.
    std::vector<TrackInfo> tracks;
    // The file's tags as key and text, in the container's order; a container without tags of
    // its own gives those of its first audio track (Ogg keeps its comments there).
    std::vector<std::pair<QString, QString>> tags;
};

// Opens `path`, reads its headers and describes it. Throws MediaError as InputFile does.
ProbeInfo probeFile(const QString& path);

} // namespace Platform::Internal
