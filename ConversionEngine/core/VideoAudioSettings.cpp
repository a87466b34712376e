// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/VideoAudioSettings.h"

#include <algorithm>

namespace ConversionEngine {

namespace {

bool isKeptRate(double hertz)
{
    return hertz == 44100.0 || hertz == 48000.0 || hertz == 96000.0;
}

} // namespace

VideoAudioSettings videoAudioSettings(std::optional<std::int64_t> sourceChannels,
                                      std::optional<double> sourceSampleRateHertz)
{
    VideoAudioSettings settings;
    if (sourceChannels)
        settings.channels = std::min(*sourceChannels, VideoAudioSettings::maximumChannels);
    if (sourceSampleRateHertz && isKeptRate(*sourceSampleRateHertz))
        settings.sampleRateHertz = *sourceSampleRateHertz;
    return settings;
}

} // namespace ConversionEngine
