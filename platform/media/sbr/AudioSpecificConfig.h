// SPDX-License-Identifier: GPL-3.0-or-later
// The decoder configuration a high-efficiency stream carries in its file: the high-band (or
// parametric-stereo) object type with the output rate, then the low-complexity core with its
// own rate and channels, so players know at once what they will decode. Pure; any thread.
#pragma once

#include <cstdint>
#include <vector>

namespace Platform::Sbr {

class AudioSpecificConfig
{
public:
    // Empty when a rate has no index of its own.
    static std::vector<std::uint8_t> make(int coreRate, int outputRate, int coreChannels,
                                          bool parametricStereo);
    // The rate's index in the format's rate table, or -1.
    static int rateIndex(int rate);
};

} // namespace Platform::Sbr
