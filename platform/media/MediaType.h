// The kinds of track a media file holds. Any thread.
#pragma once

namespace platform {

enum class MediaType
{
    audio,
    video,
};

} // namespace platform
