// SPDX-License-Identifier: GPL-3.0-or-later
// The text of --list-presets: one line per preset in the store's order, the name and the
// description separated by a tab, so that scripts can split it. Pure; any thread.
#pragma once

#include "app/presets/AnyPreset.h"

#include <QList>
#include <QString>

namespace Ondrilet {

class PresetListing
{
public:
    static QString text(const QList<AnyPreset>& presets);
};

} // namespace Ondrilet
