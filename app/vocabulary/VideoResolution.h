// SPDX-License-Identifier: GPL-3.0-or-later
// The fixed output sizes the user can pick; the raw value is also the label. No value at all
// (an empty optional) means the source's size. Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace Ondrilet {

enum class VideoResolution
{
    p720,
    p1080,
    p2160,
};

// "720p", "1080p", "4K".
QString rawValue(VideoResolution resolution);
std::optional<VideoResolution> videoResolutionFromRawValue(const QString& raw);
// The label, or "nil" for no resolution, as console lines print it.
QString labelOrNil(const std::optional<VideoResolution>& resolution);

// Every case in declared order, with its raw value.
inline constexpr auto videoResolutionTable =
    ConversionEngine::enumTable<VideoResolution, QStringView>({
        {VideoResolution::p720, u"720p"},
        {VideoResolution::p1080, u"1080p"},
        {VideoResolution::p2160, u"4K"},
    });
static_assert(videoResolutionTable.hasDistinctCases());

inline const auto& allVideoResolutions()
{
    return videoResolutionTable.allCases();
}

} // namespace Ondrilet
