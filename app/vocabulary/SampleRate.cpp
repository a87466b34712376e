#include "app/vocabulary/SampleRate.h"

namespace Ondrilet {

QString rawValue(SampleRate rate)
{
    switch (rate) {
    case SampleRate::rate44100:
        return QStringLiteral("44.1 kHz");
    case SampleRate::rate48000:
        return QStringLiteral("48 kHz");
    case SampleRate::rate96000:
        return QStringLiteral("96 kHz");
    }
    return {};
}

std::optional<SampleRate> sampleRateFromRawValue(const QString& raw)
{
    for (SampleRate rate : allSampleRates())
        if (rawValue(rate) == raw)
            return rate;
    return std::nullopt;
}

} // namespace Ondrilet
