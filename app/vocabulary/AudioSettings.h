// SPDX-License-Identifier: GPL-3.0-or-later
// The audio half of what the user picked: codec, rate, optional depth and bit rate. The level
// target travels beside it, not in it. Plain value; any thread.
#pragma once

#include "app/vocabulary/AudioBitrate.h"
#include "app/vocabulary/AudioCodec.h"
#include "app/vocabulary/BitDepth.h"
#include "app/vocabulary/SampleRate.h"

#include <optional>

namespace Ondrilet {

struct AudioSettings
{
    AudioCodec codec = AudioCodec::aac;
    SampleRate sampleRate = SampleRate::rate44100;
    std::optional<BitDepth> bitDepth;
    std::optional<AudioBitrate> bitrate;

    friend bool operator==(const AudioSettings&, const AudioSettings&) = default;
};

} // namespace Ondrilet
