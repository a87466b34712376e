// Which level-processing rows the pickers show: none, a peak target or a loudness target.
// Plain value; any thread.
#pragma once

#include <QString>

#include <array>

namespace Ondrilet {

enum class LevelMode
{
    none,
    dbfs,
    lufs,
};

// "None", "dBFS Normalization", "Integrated LUFS".
QString displayName(LevelMode mode);

inline const std::array<LevelMode, 3>& allLevelModes()
{
    static constexpr std::array<LevelMode, 3> cases{LevelMode::none, LevelMode::dbfs,
                                                    LevelMode::lufs};
    return cases;
}

} // namespace Ondrilet
