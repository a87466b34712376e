// SPDX-License-Identifier: GPL-3.0-or-later
// The video codecs the writer can encode, as names of the media layer. Any thread.
#pragma once

namespace Platform {

enum class VideoCodecType
{
    h264,
    hevc,
    appleProRes422,
    appleProRes4444,
};

} // namespace Platform
