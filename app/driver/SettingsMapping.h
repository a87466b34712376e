// SPDX-License-Identifier: GPL-3.0-or-later
// The only crossing from the application's settings to the engine's. A value the engine has no
// match for is a programming error and ends the process. Main thread (they print console lines).
#pragma once

#include "ConversionEngine/vocabulary/AudioFormat.h"
#include "ConversionEngine/vocabulary/AudioLevelTarget.h"
#include "ConversionEngine/vocabulary/AudioSettings.h"
#include "ConversionEngine/vocabulary/VideoConversionSettings.h"
#include "app/vocabulary/AudioFormat.h"
#include "app/vocabulary/AudioSettings.h"
#include "app/vocabulary/VideoFormat.h"
#include "app/vocabulary/VideoSettings.h"

namespace Ondrilet {

// Container by raw value, codec, resolution and quality by case; the resolution mode is always
// fit and the export quality always highest. Prints what it was given and what it mapped.
ConversionEngine::VideoConversionSettings mapVideoSettings(const VideoSettings& settings,
                                                           VideoFormat format);

// By exact, case-sensitive raw value. The application's "caf" has no engine counterpart
// ("CAF"), so mapping caf ends the process.
ConversionEngine::AudioFormat mapAudioFormat(AudioFormat format);

// Codec, rate and depth by case; the bit rate by its bits per second; the level target as given.
ConversionEngine::AudioSettings
mapAudioSettings(const AudioSettings& settings,
                 const ConversionEngine::AudioLevelTarget& levelProcessing);

} // namespace Ondrilet
