// A width and height in pixels, as doubles (a track's display size may be fractional in its
// container). A plain value: any thread.
#pragma once

namespace platform {

struct Size
{
    double width = 0.0;
    double height = 0.0;

    friend constexpr bool operator==(const Size&, const Size&) = default;
};

} // namespace platform
