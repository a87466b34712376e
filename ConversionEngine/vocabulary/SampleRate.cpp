#include "ConversionEngine/vocabulary/SampleRate.h"

namespace ConversionEngine {

float rawValue(SampleRate rate)
{
    switch (rate) {
    case SampleRate::rate44100:
        return 44100.0f;
    case SampleRate::rate48000:
        return 48000.0f;
    case SampleRate::rate96000:
        return 96000.0f;
    }
    return 0.0f;
}

std::optional<SampleRate> sampleRateFromRawValue(float hertz)
{
    for (SampleRate rate : allSampleRates())
        if (rawValue(rate) == hertz)
            return rate;
    return std::nullopt;
}

} // namespace ConversionEngine
