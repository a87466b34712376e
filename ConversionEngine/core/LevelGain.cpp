// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/LevelGain.h"

#include "ConversionEngine/core/LevelConstants.h"

#include <algorithm>
#include <cmath>

namespace ConversionEngine {

namespace {

constexpr float maximumCorrectionDb = 30.0f;
constexpr float maximumExponent = 1.5f; // +30 dB as a power of ten of the amplitude

float exp10Float(float exponent)
{
    return std::pow(10.0f, exponent);
}

} // namespace

float LevelGain::decibelsFromPeak(float linearPeak)
{
    return 20.0f * std::log10(linearPeak + LevelConstants::epsilon);
}

PeakLevel LevelGain::peakLevel(float linearPeak)
{
    return PeakLevel{decibelsFromPeak(linearPeak), linearPeak};
}

float LevelGain::dbfsGain(float targetDbfs, float peakDecibels)
{
    return exp10Float((targetDbfs - peakDecibels) / 20.0f);
}

float LevelGain::lufsGain(float targetLufs, float integratedLufs)
{
    const float delta = targetLufs - integratedLufs;
    float exponent = maximumExponent;
    if (!(delta >= maximumCorrectionDb || std::isnan(delta)))
        exponent = std::max(delta, -maximumCorrectionDb) / 20.0f;
    return exp10Float(exponent);
}

} // namespace ConversionEngine
