// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/MediaExtensionTable.h"

#include <algorithm>
#include <array>

namespace ConversionEngine {

namespace {

constexpr std::array<std::string_view, 7> videoExtensions{"mp4",  "mov", "avi", "mkv",
                                                          "webm", "m4v", "3gp"};
constexpr std::array<std::string_view, 8> audioExtensions{"mp3", "wav", "aiff", "aif",
                                                          "m4a", "caf", "flac", "ogg"};

template <std::size_t count>
bool listed(const std::array<std::string_view, count>& list, std::string_view extension)
{
    return std::find(list.begin(), list.end(), extension) != list.end();
}

} // namespace

MediaKind mediaKindForExtension(std::string_view extension)
{
    if (listed(videoExtensions, extension))
        return MediaKind::video;
    if (listed(audioExtensions, extension))
        return MediaKind::audio;
    return MediaKind::unknown;
}

} // namespace ConversionEngine
