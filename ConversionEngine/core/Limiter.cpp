// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/Limiter.h"

#include "ConversionEngine/core/LevelConstants.h"

#include <cstring>

namespace ConversionEngine {

static_assert(Limiter::ceiling == LevelConstants::limit);
static_assert(Limiter::safetyFactor == LevelConstants::safetyFactor);

namespace {

// Four floats as one value, the register width every x86-64 and ARM64 machine has; each step of
// the wide loop takes two of them, eight floats.
using Lanes = float __attribute__((vector_size(4 * sizeof(float))));
constexpr std::size_t lanesPerValue = 4;
static_assert(Limiter::lanes == 2 * lanesPerValue);

template <Limiter::Path path>
inline Lanes limitLanes(Lanes v, float gain, Lanes low, Lanes high)
{
    v = v * gain;
    if constexpr (path == Limiter::Path::loudness)
        v = v * Limiter::safetyFactor;
    v = v < low ? low : v;
    v = v > high ? high : v;
    return v;
}

template <Limiter::Path path>
void scaleAndClip(unsigned char* bytes, std::size_t count, float gain)
{
    const Lanes low = Lanes{} - Limiter::ceiling;
    const Lanes high = Lanes{} + Limiter::ceiling;
    constexpr std::size_t halfBytes = lanesPerValue * sizeof(float);
    std::size_t i = 0;
    for (; i + Limiter::lanes <= count; i += Limiter::lanes) {
        unsigned char* at = bytes + i * sizeof(float);
        Lanes first;
        Lanes second;
        std::memcpy(&first, at, halfBytes);
        std::memcpy(&second, at + halfBytes, halfBytes);
        first = limitLanes<path>(first, gain, low, high);
        second = limitLanes<path>(second, gain, low, high);
        std::memcpy(at, &first, halfBytes);
        std::memcpy(at + halfBytes, &second, halfBytes);
    }
    for (; i < count; ++i) {
        float x;
        std::memcpy(&x, bytes + i * sizeof(float), sizeof x);
        x = Limiter::limitSample(path, gain, x);
        std::memcpy(bytes + i * sizeof(float), &x, sizeof x);
    }
}

} // namespace

Limiter::Path Limiter::pathFor(float lufsGain, float dbfsGain)
{
    // Exact comparison on purpose: a gain that works out to exactly 1.0 also switches off the clip.
    // Held by tst_limiter::pathFollowsTheGains.
    if (lufsGain != 1.0f)
        return Path::loudness;
    if (dbfsGain != 1.0f)
        return Path::peak;
    return Path::untouched;
}

float Limiter::gainFor(Path path, float lufsGain, float dbfsGain)
{
    switch (path) {
    case Path::loudness:
        return lufsGain;
    case Path::peak:
        return dbfsGain;
    case Path::untouched:
        break;
    }
    return 1.0f;
}

void Limiter::apply(Path path, float gain, void* samples, std::size_t count)
{
    auto* bytes = static_cast<unsigned char*>(samples);
    switch (path) {
    case Path::loudness:
        scaleAndClip<Path::loudness>(bytes, count, gain);
        break;
    case Path::peak:
        scaleAndClip<Path::peak>(bytes, count, gain);
        break;
    case Path::untouched:
        break;
    }
}

Limiter::Outcome Limiter::applyToBuffer(void* data, std::size_t byteLength, float lufsGain,
                                        float dbfsGain)
{
    const Path path = pathFor(lufsGain, dbfsGain);
    if (path == Path::untouched || data == nullptr)
        return Outcome::untouched;
    if (byteLength < sizeof(float))
        return Outcome::dropped;
    apply(path, gainFor(path, lufsGain, dbfsGain), data, byteLength / sizeof(float));
    return Outcome::scaled;
}

} // namespace ConversionEngine
