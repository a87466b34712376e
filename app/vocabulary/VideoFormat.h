// SPDX-License-Identifier: GPL-3.0-or-later
// The video output formats the user can pick; raw values are upper case, unlike the audio
// formats'. Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace Ondrilet {

enum class VideoFormat
{
    mp4,
    mov,
};

// "MP4", "MOV".
QString rawValue(VideoFormat format);
std::optional<VideoFormat> videoFormatFromRawValue(const QString& raw);

// Every case in declared order, with its raw value.
inline constexpr auto videoFormatTable = ConversionEngine::enumTable<VideoFormat, QStringView>({
    {VideoFormat::mp4, u"MP4"},
    {VideoFormat::mov, u"MOV"},
});
static_assert(videoFormatTable.hasDistinctCases());

inline const auto& allVideoFormats()
{
    return videoFormatTable.allCases();
}

} // namespace Ondrilet
