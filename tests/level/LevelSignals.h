// SPDX-License-Identifier: GPL-3.0-or-later
// Synthetic signals for the level tests: sines, silence and seeded noise, interleaved 32-bit
// floats. Test code only; any thread.
#pragma once

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

namespace LevelSignals {

// `frames` frames of `channels` channels; the sine of `amplitude` at `frequencyHz` goes into
// every channel listed in `active`, the others stay silent.
inline std::vector<float> sine(std::size_t frames, int channels, double sampleRate,
                               double frequencyHz, double amplitude, const std::vector<int>& active)
{
    std::vector<float> samples(frames * static_cast<std::size_t>(channels), 0.0f);
    for (std::size_t f = 0; f < frames; ++f) {
        const double phase =
            2.0 * std::numbers::pi * frequencyHz * static_cast<double>(f) / sampleRate;
        const auto value = static_cast<float>(amplitude * std::sin(phase));
        for (const int c : active)
            samples[f * static_cast<std::size_t>(channels) + static_cast<std::size_t>(c)] = value;
    }
    return samples;
}

// Uniform noise in [-amplitude, amplitude), reproducible from the seed.
inline std::vector<float> noise(std::size_t count, float amplitude, std::uint32_t seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> distribution(-amplitude, amplitude);
    std::vector<float> samples(count);
    for (float& sample : samples)
        sample = distribution(generator);
    return samples;
}

// QCOMPARE tolerates small differences between floats; these tests mean the exact bits.
inline std::uint32_t bits(float value)
{
    return std::bit_cast<std::uint32_t>(value);
}

inline std::size_t framesFor(double seconds, double sampleRate)
{
    return static_cast<std::size_t>(std::llround(seconds * sampleRate));
}

} // namespace LevelSignals
