// SPDX-License-Identifier: GPL-3.0-or-later
// What a CRF number becomes for the encoders: an average bit rate from a bits-per-pixel line for
// H.264 and HEVC, a quality between 0 and 1 for ProRes. The two read the number on different
// ranges (5…35 for the bit rate, 0…51 for ProRes). Pure; any thread.
#pragma once

#include <cstdint>

namespace ConversionEngine {

class VideoQualityCurve
{
public:
    // 0.7 at CRF 5 and below, falling in a straight line to 0.04 at CRF 35 and above.
    static double bitsPerPixel(std::int64_t crf);
    // width × height × bits per pixel × 30, truncated. The 30 is fixed: the frame rate of the
    // output does not enter.
    static std::int64_t bitRate(std::int64_t crf, double width, double height);
    // 1 at CRF 0, 0 at CRF 51 and beyond, in 32-bit arithmetic.
    static float proResQuality(std::int64_t crf);

    static constexpr double nominalFramesPerSecond = 30.0;
};

} // namespace ConversionEngine
