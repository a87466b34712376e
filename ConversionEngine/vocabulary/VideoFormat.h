// SPDX-License-Identifier: GPL-3.0-or-later
// The video containers the video engine writes, with the writer's file type for each.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"
#include "platform/media/FileType.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class VideoFormat
{
    mp4,
    mov,
    m4v,
};

// "MP4", "MOV", "M4V".
QString rawValue(VideoFormat format);
std::optional<VideoFormat> videoFormatFromRawValue(const QString& raw);
// The raw value in lower case.
QString fileExtension(VideoFormat format);
// QuickTime for mov; MPEG-4 for mp4 and m4v.
Platform::FileType fileType(VideoFormat format);

// Every case in declared order, with its raw value.
inline constexpr auto videoFormatTable = enumTable<VideoFormat, QStringView>({
    {VideoFormat::mp4, u"MP4"},
    {VideoFormat::mov, u"MOV"},
    {VideoFormat::m4v, u"M4V"},
});
static_assert(videoFormatTable.hasDistinctCases());

inline const auto& allVideoFormats()
{
    return videoFormatTable.allCases();
}

} // namespace ConversionEngine
