// SPDX-License-Identifier: GPL-3.0-or-later
// A point or span of media time as a rational number: value / timescale seconds.
// An invalid time stands for "no time" (a frame duration that follows the source). Any thread.
#pragma once

#include <cstdint>

namespace Platform {

struct MediaTime
{
    std::int64_t value = 0;
    std::int32_t timescale = 0;
    bool isValid = false;

    static constexpr MediaTime make(std::int64_t value, std::int32_t timescale)
    {
        return MediaTime{value, timescale, timescale > 0};
    }
    static constexpr MediaTime invalid() { return MediaTime{}; }
    static constexpr MediaTime zero() { return make(0, 1); }

    // The time in seconds; 0 for an invalid time.
    constexpr double seconds() const
    {
        return isValid ? static_cast<double>(value) / static_cast<double>(timescale) : 0.0;
    }

    friend constexpr bool operator==(const MediaTime& a, const MediaTime& b)
    {
        if (!a.isValid || !b.isValid)
            return a.isValid == b.isValid;
        return a.value * b.timescale == b.value * a.timescale;
    }
};

} // namespace Platform
