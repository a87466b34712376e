// SPDX-License-Identifier: GPL-3.0-or-later
// The output frame rates of a video conversion, shared by the application and the engine;
// `source` keeps the input's rate. Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"
#include "ConversionEngine/vocabulary/FrameRateCategory.h"
#include "platform/media/MediaTime.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class VideoFrameRate
{
    source,
    fps23976,
    fps24,
    fps25,
    fps2997,
    fps30,
    fps50,
    fps5994,
    fps60,
};

// "Source", "23.976", "24" … "60".
QString rawValue(VideoFrameRate rate);
std::optional<VideoFrameRate> videoFrameRateFromRawValue(const QString& raw);
// "Source", or the raw value and " fps".
QString displayName(VideoFrameRate rate);
// Frames per second; 0 for source.
double numericValue(VideoFrameRate rate);
// The exact duration of one frame (1001/30000 for 29.97); an invalid time for source.
Platform::MediaTime frameDuration(VideoFrameRate rate);
// 30 and 60 count as NTSC along with 29.97 and 59.94.
FrameRateCategory category(VideoFrameRate rate);
// The rate a measured frames-per-second value stands for: the value rounded to three decimals
// must equal a listed rate exactly, otherwise the answer is source.
VideoFrameRate videoFrameRateFromNumeric(double framesPerSecond);

// Every case in declared order, with its raw value.
inline constexpr auto videoFrameRateTable = enumTable<VideoFrameRate, QStringView>({
    {VideoFrameRate::source, u"Source"},
    {VideoFrameRate::fps23976, u"23.976"},
    {VideoFrameRate::fps24, u"24"},
    {VideoFrameRate::fps25, u"25"},
    {VideoFrameRate::fps2997, u"29.97"},
    {VideoFrameRate::fps30, u"30"},
    {VideoFrameRate::fps50, u"50"},
    {VideoFrameRate::fps5994, u"59.94"},
    {VideoFrameRate::fps60, u"60"},
});
static_assert(videoFrameRateTable.hasDistinctCases());

inline const auto& allVideoFrameRates()
{
    return videoFrameRateTable.allCases();
}

} // namespace ConversionEngine
