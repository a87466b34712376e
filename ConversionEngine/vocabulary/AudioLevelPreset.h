// SPDX-License-Identifier: GPL-3.0-or-later
// Named loudness targets for the LUFS picker, and a custom one. Plain value; any thread.
// Showing a custom value that has no whole-number form ends the process.
#pragma once

#include <QString>

namespace ConversionEngine {

struct AudioLevelPreset
{
    enum class Kind
    {
        custom,
        ebur128,
        atsc,
        talkoverBed,
        spotify,
        youtube,
    };

    Kind kind = Kind::ebur128;
    float customLufs = 0.0f; // only for custom

    static constexpr AudioLevelPreset custom(float lufs)
    {
        return AudioLevelPreset{Kind::custom, lufs};
    }
    static constexpr AudioLevelPreset ebur128() { return AudioLevelPreset{Kind::ebur128, 0.0f}; }
    static constexpr AudioLevelPreset atsc() { return AudioLevelPreset{Kind::atsc, 0.0f}; }
    static constexpr AudioLevelPreset talkoverBed()
    {
        return AudioLevelPreset{Kind::talkoverBed, 0.0f};
    }
    static constexpr AudioLevelPreset spotify() { return AudioLevelPreset{Kind::spotify, 0.0f}; }
    static constexpr AudioLevelPreset youtube() { return AudioLevelPreset{Kind::youtube, 0.0f}; }

    friend constexpr bool operator==(const AudioLevelPreset& a, const AudioLevelPreset& b)
    {
        if (a.kind != b.kind)
            return false;
        return a.kind != Kind::custom || a.customLufs == b.customLufs;
    }
};

// "EBU R128 (-23 LUFS)"…; a custom preset shows "Custom (" + its value truncated toward zero
// + " LUFS)". A custom value that is not finite or lies outside the 64-bit integers is fatal.
QString displayName(const AudioLevelPreset& preset);
// The target in LUFS: the custom value, or the fixed value of a named preset.
float lufsValue(const AudioLevelPreset& preset);

} // namespace ConversionEngine
