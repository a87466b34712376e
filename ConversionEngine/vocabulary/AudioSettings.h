// SPDX-License-Identifier: GPL-3.0-or-later
// What the audio engine is asked to write: codec, rate, optional depth and bit rate, and the
// level processing. Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/AudioBitrate.h"
#include "ConversionEngine/vocabulary/AudioCodec.h"
#include "ConversionEngine/vocabulary/AudioLevelTarget.h"
#include "ConversionEngine/vocabulary/BitDepth.h"
#include "ConversionEngine/vocabulary/SampleRate.h"

#include <optional>

namespace ConversionEngine {

struct AudioSettings
{
    AudioCodec codec = AudioCodec::aac;
    SampleRate sampleRate = SampleRate::rate44100;
    std::optional<BitDepth> bitDepth;
    std::optional<AudioBitrate> bitrate;
    AudioLevelTarget levelProcessing;

    friend bool operator==(const AudioSettings&, const AudioSettings&) = default;
};

} // namespace ConversionEngine
