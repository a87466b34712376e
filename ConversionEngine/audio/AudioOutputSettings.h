// SPDX-License-Identifier: GPL-3.0-or-later
// The settings dictionaries of an audio conversion: what every audio reader of the engine asks
// for (interleaved little-endian float32 at the source's own rate and channels), and what the
// writer input is given for a format, the user's audio settings and the source. Pure; any thread.
#pragma once

#include "ConversionEngine/vocabulary/AudioFormat.h"
#include "ConversionEngine/vocabulary/AudioSettings.h"
#include "platform/media/FileType.h"
#include "platform/media/SettingsDictionary.h"

namespace ConversionEngine {

class AudioOutputSettings
{
public:
    AudioOutputSettings() = delete;

    // The one form in which the engine reads audio: the main pass and both analysis passes.
    static Platform::SettingsDictionary decodeSettings();

    // The container written for a format.
    static Platform::FileType fileType(AudioFormat format);

    // The writer input's settings. Never fails: whether the writer takes them shows when the
    // input is offered to it.
    static Platform::SettingsDictionary encodeSettings(AudioFormat format,
                                                       const AudioSettings& settings,
                                                       double sourceSampleRateHertz,
                                                       int sourceChannelCount);
};

} // namespace ConversionEngine
