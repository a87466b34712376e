// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/StreamFigures.h"

#include <cmath>

namespace ConversionEngine {

namespace {

// Truncation with the cases that have no integer answer sent to 0 instead of undefined
// behaviour.
std::int64_t truncated(double value)
{
    constexpr double limit = 9.2e18;
    if (!std::isfinite(value) || value >= limit || value <= -limit)
        return 0;
    return static_cast<std::int64_t>(value);
}

} // namespace

std::int64_t videoBitRate(float estimatedDataRateBitsPerSecond)
{
    return truncated(double(estimatedDataRateBitsPerSecond));
}

double aspectRatio(double width, double height)
{
    if (height == 0.0)
        return 0.0;
    return width / height;
}

std::int64_t wholeSampleRate(double sampleRateHertz)
{
    return truncated(sampleRateHertz);
}

std::optional<std::int64_t> uncompressedBitRate(std::int64_t sampleRateHertz,
                                                std::uint32_t channels,
                                                std::uint32_t bitsPerChannel)
{
    if (bitsPerChannel == 0)
        return std::nullopt;
    return truncated(double(sampleRateHertz) * double(channels) * double(bitsPerChannel));
}

} // namespace ConversionEngine
