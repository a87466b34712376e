// SPDX-License-Identifier: GPL-3.0-or-later
// Replays the settings of a command line on the main window's model, each through the call its
// panel control makes, so that every rule the model keeps (the codec check after a format
// change, the level picker and sliders, the metadata triggers) runs as it does in the window.
// Main thread only.
#pragma once

#include "cli/CliSetting.h"

#include <vector>

namespace Ondrilet {

class ContentViewModel;

class CliModelApplier
{
public:
    // What only the file system can tell, checked before the model is touched: an output
    // directory must exist, as the directory panel offers only existing ones. Throws UsageError.
    static void check(const std::vector<CliSetting>& settings);

    static void apply(ContentViewModel& model, const CliSetting& setting);
};

} // namespace Ondrilet
