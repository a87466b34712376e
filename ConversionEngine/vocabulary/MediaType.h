// Whether a media file is video, audio or neither, with the symbol the front end shows.
// Plain value; any thread.
#pragma once

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

inline const std::array<MediaType, 3>& allMediaTypes()
{
    static constexpr std::array<MediaType, 3> cases{
        MediaType::video,
        MediaType::audio,
        MediaType::unknown,
    };
    return cases;
}

} // namespace ConversionEngine
