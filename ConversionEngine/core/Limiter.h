// SPDX-License-Identifier: GPL-3.0-or-later
// The level gain as the audio pump applies it to each decoded buffer, followed by a bare clip at
// ±0.97723722 (-0.2 dBFS): no look-ahead, no attack or release. Works in place on 32-bit floats,
// eight at a time where the buffer allows, with the same arithmetic for the rest. Any thread, on
// a buffer no other thread touches.
#pragma once

#include <cstddef>

namespace ConversionEngine {

class Limiter
{
public:
    enum class Path
    {
        untouched, // both gains exactly 1.0: no scaling and no clip either
        loudness,  // (x × gain) × 0.98, then the clip
        peak,      // x × gain, then the clip
    };

    enum class Outcome
    {
        untouched, // left as it was
        scaled,    // scaled and clipped in place
        dropped,   // under four bytes with a gain to apply: the buffer must not be written
    };

    // The loudness gain wins whenever it is not exactly 1.0; the peak gain is then ignored.
    static Path pathFor(float lufsGain, float dbfsGain);
    static float gainFor(Path path, float lufsGain, float dbfsGain);

    // One sample, exactly as the wide loop computes each of its lanes. A NaN stays NaN.
    static float limitSample(Path path, float gain, float x)
    {
        float v = x * gain;
        if (path == Path::loudness)
            v = v * safetyFactor;
        if (v < -ceiling)
            v = -ceiling;
        if (v > ceiling)
            v = ceiling;
        return v;
    }

    // Scales and clips `count` floats in place; `samples` needs no particular alignment.
    static void apply(Path path, float gain, void* samples, std::size_t count);

    // What the pump does to one buffer of `byteLength` bytes. Bytes past the last whole float are
    // left alone. A null block is left untouched.
    static Outcome applyToBuffer(void* data, std::size_t byteLength, float lufsGain,
                                 float dbfsGain);

    static constexpr float ceiling = 0.97723722f;
    static constexpr float safetyFactor = 0.98f;
    static constexpr std::size_t lanes = 8;
};

} // namespace ConversionEngine
