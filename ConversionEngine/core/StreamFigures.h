// SPDX-License-Identifier: GPL-3.0-or-later
// The numbers a stream record derives from what the media layer reports: the video bit rate, the
// picture's aspect ratio and the bit rate of uncompressed audio. Pure; any thread.
#pragma once

#include <cstdint>
#include <optional>

namespace ConversionEngine {

// The estimated data rate, truncated towards zero. A rate that is not finite or does not fit is
// taken as 0: the media layer reports 0 where it cannot estimate, and a NaN would mean the same.
std::int64_t videoBitRate(float estimatedDataRateBitsPerSecond);

// Width over height; a picture of no height has no ratio and gives 0.
double aspectRatio(double width, double height);

// The sample rate truncated to whole hertz (0 when it is not finite or does not fit).
std::int64_t wholeSampleRate(double sampleRateHertz);

// Whole-hertz rate × channels × depth for audio with a fixed depth, truncated; absent when the
// depth is 0, which is how compressed audio reports itself. The product is taken in 64-bit float.
std::optional<std::int64_t> uncompressedBitRate(std::int64_t sampleRateHertz,
                                                std::uint32_t channels,
                                                std::uint32_t bitsPerChannel);

} // namespace ConversionEngine
