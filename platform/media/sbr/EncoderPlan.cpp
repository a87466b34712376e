// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/sbr/EncoderPlan.h"

#include <algorithm>
#include <array>

namespace Platform::Sbr {

namespace {

// What the side information costs per coded channel, and the stereo parameters on top.
constexpr int highBandBitsPerSecond = 2500;
constexpr int stereoBitsPerSecond = 1500;
constexpr int leanestCoreBitsPerChannel = 6000;
// Where the replicated band ends.
constexpr double topHertz = 16000.0;

// The crossover follows the core's bits per channel: a richer core codes more of the band
// itself.
double crossoverFor(int coreBitsPerChannel)
{
    if (coreBitsPerChannel < 14000)
        return 4500.0;
    if (coreBitsPerChannel < 20000)
        return 5500.0;
    if (coreBitsPerChannel < 28000)
        return 6750.0;
    return 8000.0;
}

} // namespace

int EncoderPlan::defaultBitRate(int channels, bool parametricStereo)
{
    if (parametricStereo)
        return 32000;
    return channels == 1 ? 32000 : 48000;
}

std::optional<EncoderPlan> EncoderPlan::make(int outputRate, int channels, bool parametricStereo,
                                             std::optional<int> bitRate)
{
    constexpr std::array<int, 6> rates{32000, 44100, 48000, 64000, 88200, 96000};
    if (std::find(rates.begin(), rates.end(), outputRate) == rates.end())
        return std::nullopt;
    if (parametricStereo ? channels != 2 : (channels != 1 && channels != 2))
        return std::nullopt;
    EncoderPlan plan;
    plan.outputRate = outputRate;
    plan.coreRate = outputRate / 2;
    plan.coreChannels = parametricStereo ? 1 : channels;
    plan.totalBitRate = bitRate.value_or(defaultBitRate(channels, parametricStereo));
    const int sideBits =
        plan.coreChannels * highBandBitsPerSecond + (parametricStereo ? stereoBitsPerSecond : 0);
    plan.coreBitRate =
        std::max(leanestCoreBitsPerChannel * plan.coreChannels, plan.totalBitRate - sideBits);
    plan.bands = FrequencyTables::choose(
        outputRate, crossoverFor(plan.coreBitRate / plan.coreChannels), topHertz);
    const std::optional<FrequencyTables> tables = FrequencyTables::make(outputRate, plan.bands);
    if (!tables)
        return std::nullopt;
    plan.tables = *tables;
    plan.crossoverHertz = tables->kx * outputRate / 128;
    return plan;
}

} // namespace Platform::Sbr
