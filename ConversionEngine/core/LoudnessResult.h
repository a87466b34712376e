// SPDX-License-Identifier: GPL-3.0-or-later
// What one loudness analysis reports: four 32-bit floats. A plain value; any thread.
#pragma once

namespace ConversionEngine {

struct LoudnessResult
{
    float integratedLUFS = 0.0f;    // gated loudness
    float ungatedLUFS = 0.0f;       // loudness of all windows
    float effectiveGateLUFS = 0.0f; // the gate that was applied
    float truePeakDBTP = 0.0f;      // interpolated peak of the weighted signal, in dB

    friend bool operator==(const LoudnessResult&, const LoudnessResult&) = default;
};

} // namespace ConversionEngine
