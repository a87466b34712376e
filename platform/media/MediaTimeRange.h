// SPDX-License-Identifier: GPL-3.0-or-later
// A stretch of media time: where it starts and how long it lasts. A plain value: any thread.
#pragma once

#include "platform/media/MediaTime.h"

namespace Platform {

struct MediaTimeRange
{
    MediaTime start = MediaTime::zero();
    MediaTime duration = MediaTime::invalid();

    friend constexpr bool operator==(const MediaTimeRange&, const MediaTimeRange&) = default;
};

} // namespace Platform
