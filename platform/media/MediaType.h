// SPDX-License-Identifier: GPL-3.0-or-later
// The kinds of track a media file holds. Any thread.
#pragma once

namespace Platform {

enum class MediaType
{
    audio,
    video,
};

} // namespace Platform
