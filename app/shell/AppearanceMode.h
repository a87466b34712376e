// SPDX-License-Identifier: GPL-3.0-or-later
// How the windows look: after the desktop, always light or always dark. The raw value is what
// the settings store and the theme picker shows. Plain value; any thread.
#pragma once

#include <QString>

#include <array>

namespace Ondrilet {

enum class AppearanceMode
{
    system,
    light,
    dark,
};

// "System", "Light", "Dark".
QString rawValue(AppearanceMode mode);
// Any text that is not one of the raw values counts as system.
AppearanceMode appearanceModeFromStored(const QString& raw);

inline const std::array<AppearanceMode, 3>& allAppearanceModes()
{
    static constexpr std::array<AppearanceMode, 3> cases{
        AppearanceMode::system, AppearanceMode::light, AppearanceMode::dark};
    return cases;
}

} // namespace Ondrilet
