// SPDX-License-Identifier: GPL-3.0-or-later
// The fixed output sizes of a video conversion, in pixels. Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class VideoResolution
{
    sd480,
    hd720,
    hd1080,
    uhd4k,
};

// "480p", "720p", "1080p", "4K".
QString rawValue(VideoResolution resolution);
std::optional<VideoResolution> videoResolutionFromRawValue(const QString& raw);
// Pixels.
int width(VideoResolution resolution);
int height(VideoResolution resolution);

// Every case in declared order, with its raw value.
inline constexpr auto videoResolutionTable = enumTable<VideoResolution, QStringView>({
    {VideoResolution::sd480, u"480p"},
    {VideoResolution::hd720, u"720p"},
    {VideoResolution::hd1080, u"1080p"},
    {VideoResolution::uhd4k, u"4K"},
});
static_assert(videoResolutionTable.hasDistinctCases());

inline const auto& allVideoResolutions()
{
    return videoResolutionTable.allCases();
}

} // namespace ConversionEngine
