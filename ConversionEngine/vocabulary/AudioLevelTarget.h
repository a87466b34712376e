// SPDX-License-Identifier: GPL-3.0-or-later
// What level processing an audio conversion does: bring the peak to a dBFS target, bring the
// integrated loudness to a LUFS target, or leave the level alone. Plain value; any thread.
#pragma once

namespace ConversionEngine {

struct AudioLevelTarget
{
    enum class Kind
    {
        dbFS,
        integratedLUFS,
        none,
    };

    Kind kind = Kind::none;
    float target = 0.0f; // dBFS or LUFS by kind; unused for none

    static constexpr AudioLevelTarget dbFS(float targetDbfs)
    {
        return AudioLevelTarget{Kind::dbFS, targetDbfs};
    }
    static constexpr AudioLevelTarget integratedLUFS(float targetLufs)
    {
        return AudioLevelTarget{Kind::integratedLUFS, targetLufs};
    }
    static constexpr AudioLevelTarget none() { return AudioLevelTarget{}; }

    constexpr bool isNone() const { return kind == Kind::none; }

    // Two targets are equal when their kinds are, and for dbFS and integratedLUFS also their
    // floats; whatever a none carries in its float is not part of its value.
    friend constexpr bool operator==(const AudioLevelTarget& a, const AudioLevelTarget& b)
    {
        if (a.kind != b.kind)
            return false;
        return a.kind == Kind::none || a.target == b.target;
    }
};

} // namespace ConversionEngine
