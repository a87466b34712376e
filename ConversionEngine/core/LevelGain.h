// SPDX-License-Identifier: GPL-3.0-or-later
// The one static gain of a level target: from a measured peak towards a dBFS target, or from a
// measured integrated loudness towards a LUFS target. 32-bit float throughout. Pure; any thread.
#pragma once

namespace ConversionEngine {

// A peak as the peak pass reports it: in dB and linear.
struct PeakLevel
{
    float decibels = 0.0f;
    float linear = 0.0f;
};

class LevelGain
{
public:
    // 20 × log10(peak + 1e-12): silence reads about -240 dB, never minus infinity.
    static float decibelsFromPeak(float linearPeak);
    static PeakLevel peakLevel(float linearPeak);

    // 10^((target − peak) / 20), unclamped both ways: the limiter is the only guard.
    static float dbfsGain(float targetDbfs, float peakDecibels);

    // 10^(delta / 20) with delta = target − measured, held within -30 dB and +30 dB; a NaN
    // delta takes the upper bound.
    static float lufsGain(float targetLufs, float integratedLufs);
};

} // namespace ConversionEngine
