// SPDX-License-Identifier: GPL-3.0-or-later
// Peak estimates over interleaved 32-bit float samples: the largest magnitude, and the peak with
// three linearly interpolated points between neighbouring samples of each channel. Pure functions;
// any thread.
#pragma once

#include <cstddef>
#include <span>

namespace ConversionEngine {

// The largest absolute value in `samples`; 0 for none. A NaN never counts as larger.
float maxMagnitude(std::span<const float> samples);

// Linear interpolation at a quarter, half and three quarters between neighbours, one running
// peak across all channels, held to at most 1.0. With fewer than two frames it falls back to the
// plain largest magnitude, which is not held to 1.0. No channels (and two frames or more) gives 0.
float interpolatedPeak(std::span<const float> samples, int channels);

} // namespace ConversionEngine
