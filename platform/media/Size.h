// SPDX-License-Identifier: GPL-3.0-or-later
// A width and height in pixels, as doubles (a track's display size may be fractional in its
// container). A plain value: any thread.
#pragma once

namespace Platform {

struct Size
{
    double width = 0.0;
    double height = 0.0;

    friend constexpr bool operator==(const Size&, const Size&) = default;
};

} // namespace Platform
