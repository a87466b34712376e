// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/PresetListing.h"

namespace Ondrilet {

QString PresetListing::text(const QList<AnyPreset>& presets)
{
    QString text;
    for (const AnyPreset& preset : presets)
        text += preset.name() + QLatin1Char('\t') + preset.presetDescription() + QLatin1Char('\n');
    return text;
}

} // namespace Ondrilet
