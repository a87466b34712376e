// SPDX-License-Identifier: GPL-3.0-or-later
// The file type an audio output is written as, and the choice of it from the requested format.
// Pure; any thread.
#pragma once

#include "ConversionEngine/core/AudioFormatKind.h"

namespace ConversionEngine {

// Named as the writer's file types are; the media layer turns each into its muxer.
enum class AudioContainer
{
    aiff,
    wave,
    appleM4A,
    coreAudioFormat,
};

AudioContainer audioContainer(AudioFormatKind format);

} // namespace ConversionEngine
