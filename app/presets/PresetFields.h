// SPDX-License-Identifier: GPL-3.0-or-later
// What the video and audio preset records do alike with their fields: the lookup of a fixed
// description text by name, and the plain values their hashes take from a few fields.
// Pure functions; any thread.
#pragma once

#include "ConversionEngine/vocabulary/AudioLevelPreset.h"
#include "ConversionEngine/vocabulary/AudioLevelTarget.h"
#include "app/vocabulary/OutputFormat.h"

#include <QString>

#include <optional>
#include <span>

namespace Ondrilet {

class PresetFields
{
public:
    // A name that always shows the same text, whatever the fields hold.
    struct FixedDescription
    {
        const char* name;
        const char* text;
    };

    // The text the table gives for the name, or none when the name is not in it.
    static std::optional<QString> fixedDescription(const QString& name,
                                                   std::span<const FixedDescription> table);

    // A none level target and a named loudness preset carry a float that is not part of their
    // value, so it must not reach the hash either: these give 0 for it.
    static float levelTargetValue(const ConversionEngine::AudioLevelTarget& target);
    static float customLufsValue(const ConversionEngine::AudioLevelPreset& preset);

    // The container's label, whichever kind of output it is.
    static QString outputFormatLabel(const OutputFormat& format);
};

} // namespace Ondrilet
