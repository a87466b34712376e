// SPDX-License-Identifier: GPL-3.0-or-later
// Whether a media file is video, audio or neither, with the symbol the front end shows.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class MediaType
{
    video,
    audio,
    unknown,
};

// "Video", "Audio", "Unknown".
QString rawValue(MediaType type);
std::optional<MediaType> mediaTypeFromRawValue(const QString& raw);
// "video.fill", "music.note", "questionmark.circle".
QString symbolName(MediaType type);

// Every case in declared order, with its raw value.
inline constexpr auto mediaTypeTable = enumTable<MediaType, QStringView>({
    {MediaType::video, u"Video"},
    {MediaType::audio, u"Audio"},
    {MediaType::unknown, u"Unknown"},
});
static_assert(mediaTypeTable.hasDistinctCases());

inline const auto& allMediaTypes()
{
    return mediaTypeTable.allCases();
}

} // namespace ConversionEngine
