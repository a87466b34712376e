// What one look at a media file found: its duration and its tracks, in plain values. The probe
// runs once per asset, on whatever thread first needs it. Media layer internals only.
#pragma once

#include "platform/media/FormatDescription.h"
#include "platform/media/MediaTime.h"
#include "platform/media/MediaType.h"

#include <QString>

#include <vector>

namespace platform::internal {

struct TrackInfo
{
    // The container's stream index; the track's identity within its asset.
    int streamIndex = -1;
    MediaType mediaType = MediaType::audio;
    bool isEnabled = true;
    std::vector<FormatDescription> formatDescriptions;
};

struct ProbeInfo
{
    // Invalid when the container does not tell.
    MediaTime duration = MediaTime::invalid();
    QString containerName;
    // Audio and video tracks in stream order; cover pictures and other streams are not tracks.
    std::vector<TrackInfo> tracks;
};

// Opens `path`, reads its headers and describes it. Throws MediaError as InputFile does.
ProbeInfo probeFile(const QString& path);

} // namespace platform::internal
