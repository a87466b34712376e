// SPDX-License-Identifier: GPL-3.0-or-later
// How a high-efficiency stream shares its bits: the total rate (chosen when the settings name
// none), what the core gets, where the core hands over to the replicated band and the band
// tables that follow. Pure; any thread.
#pragma once

#include "platform/media/sbr/FrequencyTables.h"

#include <optional>

namespace Platform::Sbr {

struct EncoderPlan
{
    // Nullopt when the rate has no high band or the channel count does not fit.
    static std::optional<EncoderPlan> make(int outputRate, int channels, bool parametricStereo,
                                           std::optional<int> bitRate);
    static int defaultBitRate(int channels, bool parametricStereo);

    int outputRate = 0;
    int coreRate = 0;
    int coreChannels = 0;
    int totalBitRate = 0;
    int coreBitRate = 0;
    BandChoice bands;
    FrequencyTables tables;
    // Where the core's own band ends.
    int crossoverHertz = 0;
};

} // namespace Platform::Sbr
