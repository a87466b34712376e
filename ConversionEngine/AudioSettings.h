// What the audio engine is asked to write: codec, rate, optional depth and bit rate, and the
// level processing. Plain value; any thread.
#pragma once

#include "ConversionEngine/AudioBitrate.h"
#include "ConversionEngine/AudioCodec.h"
#include "ConversionEngine/AudioLevelTarget.h"
#include "ConversionEngine/BitDepth.h"
#include "ConversionEngine/SampleRate.h"

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
