// SPDX-License-Identifier: GPL-3.0-or-later
// Which level-processing rows the pickers show: none, a peak target or a loudness target.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

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

// Every case in declared order, with its case name and display name.
inline constexpr auto levelModeTable = ConversionEngine::enumTable<LevelMode, QStringView>({
    {LevelMode::none, u"none", u"None"},
    {LevelMode::dbfs, u"dbfs", u"dBFS Normalization"},
    {LevelMode::lufs, u"lufs", u"Integrated LUFS"},
});
static_assert(levelModeTable.hasDistinctCases());

inline const auto& allLevelModes()
{
    return levelModeTable.allCases();
}

} // namespace Ondrilet
