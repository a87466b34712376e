// What a track's samples are: its media type, the codec, and for audio the stream basic
// description. A plain value: any thread.
#pragma once

#include "platform/media/MediaType.h"
#include "platform/media/StreamBasicDescription.h"

#include <QString>

#include <optional>

namespace platform {

struct FormatDescription
{
    MediaType mediaType = MediaType::audio;
    // The decoder's short name ("pcm_s16le", "aac", "h264", …); empty when none is known.
    QString codecName;
    // Present for an audio track whose rate and channel count are known.
    std::optional<StreamBasicDescription> streamBasicDescription;
    // Stored picture size of a video track; 0 for audio.
    int width = 0;
    int height = 0;
};

} // namespace platform
