// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/vocabulary/VideoFrameRate.h"

#include <cmath>

namespace ConversionEngine {

QString rawValue(VideoFrameRate rate)
{
    return videoFrameRateTable.rawValue(rate);
}

std::optional<VideoFrameRate> videoFrameRateFromRawValue(const QString& raw)
{
    return videoFrameRateTable.fromRawValue(raw);
}

QString displayName(VideoFrameRate rate)
{
    if (rate == VideoFrameRate::source)
        return QStringLiteral("Source");
    return rawValue(rate) + QStringLiteral(" fps");
}

double numericValue(VideoFrameRate rate)
{
    switch (rate) {
    case VideoFrameRate::source:
        return 0.0;
    case VideoFrameRate::fps23976:
        return 23.976;
    case VideoFrameRate::fps24:
        return 24.0;
    case VideoFrameRate::fps25:
        return 25.0;
    case VideoFrameRate::fps2997:
        return 29.97;
    case VideoFrameRate::fps30:
        return 30.0;
    case VideoFrameRate::fps50:
        return 50.0;
    case VideoFrameRate::fps5994:
        return 59.94;
    case VideoFrameRate::fps60:
        return 60.0;
    }
    return 0.0;
}

Platform::MediaTime frameDuration(VideoFrameRate rate)
{
    switch (rate) {
    case VideoFrameRate::source:
        return Platform::MediaTime::invalid();
    case VideoFrameRate::fps23976:
        return Platform::MediaTime::make(1001, 24000);
    case VideoFrameRate::fps24:
        return Platform::MediaTime::make(1, 24);
    case VideoFrameRate::fps25:
        return Platform::MediaTime::make(1, 25);
    case VideoFrameRate::fps2997:
        return Platform::MediaTime::make(1001, 30000);
    case VideoFrameRate::fps30:
        return Platform::MediaTime::make(1, 30);
    case VideoFrameRate::fps50:
        return Platform::MediaTime::make(1, 50);
    case VideoFrameRate::fps5994:
        return Platform::MediaTime::make(1001, 60000);
    case VideoFrameRate::fps60:
        return Platform::MediaTime::make(1, 60);
    }
    return Platform::MediaTime::invalid();
}

FrameRateCategory category(VideoFrameRate rate)
{
    switch (rate) {
    case VideoFrameRate::source:
        return FrameRateCategory::source;
    case VideoFrameRate::fps23976:
    case VideoFrameRate::fps24:
        return FrameRateCategory::cinema;
    case VideoFrameRate::fps25:
    case VideoFrameRate::fps50:
        return FrameRateCategory::pal;
    case VideoFrameRate::fps2997:
    case VideoFrameRate::fps30:
    case VideoFrameRate::fps5994:
    case VideoFrameRate::fps60:
        return FrameRateCategory::ntsc;
    }
    return FrameRateCategory::source;
}

VideoFrameRate videoFrameRateFromNumeric(double framesPerSecond)
{
    const double rounded = std::round(framesPerSecond * 1000.0) / 1000.0;
    for (VideoFrameRate rate : allVideoFrameRates())
        if (rate != VideoFrameRate::source && numericValue(rate) == rounded)
            return rate;
    return VideoFrameRate::source;
}

} // namespace ConversionEngine
