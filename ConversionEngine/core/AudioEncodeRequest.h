// SPDX-License-Identifier: GPL-3.0-or-later
// What the user's audio settings contribute to the writer's settings, in plain numbers: the
// engine fills it from its own audio settings (the level processing plays no part here). Any
// thread.
#pragma once

#include "ConversionEngine/core/AudioCodecKind.h"

#include <optional>

namespace ConversionEngine {

struct AudioEncodeRequest
{
    AudioCodecKind codec = AudioCodecKind::aac;
    // The selected rate: 44100 or 48000, any other value stands for 96000.
    float sampleRateHertz = 44100.0f;
    std::optional<int> bitDepthBits;
    std::optional<int> bitRateBitsPerSecond;
};

} // namespace ConversionEngine
