// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/presets/PresetFields.h"

#include <QLatin1String>

namespace Ondrilet {

std::optional<QString> PresetFields::fixedDescription(const QString& name,
                                                      std::span<const FixedDescription> table)
{
    for (const FixedDescription& entry : table)
        if (name == QLatin1String(entry.name))
            return QString::fromLatin1(entry.text);
    return std::nullopt;
}

float PresetFields::levelTargetValue(const ConversionEngine::AudioLevelTarget& target)
{
    return target.isNone() ? 0.0f : target.target;
}

float PresetFields::customLufsValue(const ConversionEngine::AudioLevelPreset& preset)
{
    return preset.kind == ConversionEngine::AudioLevelPreset::Kind::custom ? preset.customLufs
                                                                           : 0.0f;
}

QString PresetFields::outputFormatLabel(const OutputFormat& format)
{
    return format.isVideo() ? rawValue(format.videoFormat) : rawValue(format.audioFormat);
}

} // namespace Ondrilet
