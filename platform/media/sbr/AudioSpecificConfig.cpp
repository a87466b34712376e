// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/sbr/AudioSpecificConfig.h"

#include "platform/media/sbr/BitWriter.h"

#include <array>

namespace Platform::Sbr {

namespace {

constexpr int lowComplexity = 2;
constexpr int highBand = 5;
constexpr int parametricStereoType = 29;

} // namespace

int AudioSpecificConfig::rateIndex(int rate)
{
    constexpr std::array<int, 13> rates{96000, 88200, 64000, 48000, 44100, 32000, 24000,
                                        22050, 16000, 12000, 11025, 8000,  7350};
    for (std::size_t i = 0; i < rates.size(); ++i) {
        if (rates[i] == rate)
            return static_cast<int>(i);
    }
    return -1;
}

std::vector<std::uint8_t> AudioSpecificConfig::make(int coreRate, int outputRate, int coreChannels,
                                                    bool parametricStereo)
{
    const int coreIndex = rateIndex(coreRate);
    const int outputIndex = rateIndex(outputRate);
    if (coreIndex < 0 || outputIndex < 0)
        return {};
    BitWriter out;
    out.write(parametricStereo ? parametricStereoType : highBand, 5);
    out.write(static_cast<std::uint32_t>(coreIndex), 4);
    out.write(static_cast<std::uint32_t>(coreChannels), 4);
    out.write(static_cast<std::uint32_t>(outputIndex), 4);
    out.write(lowComplexity, 5);
    out.write(0, 1); // frames of 1024 samples
    out.write(0, 1); // no core coder beneath
    out.write(0, 1); // no extension
    out.padToByte();
    return out.bytes();
}

} // namespace Platform::Sbr
