// SPDX-License-Identifier: GPL-3.0-or-later
// The names the inspection gives a track's codec, from the four-character code of its media
// subtype. Only a handful of codes have a name; every other code reads "Unknown". Pure; any thread.
#pragma once

#include <cstdint>
#include <string_view>

namespace ConversionEngine {

// "avc1" H.264, "hvc1" H.265, "jpeg" JPEG, "mp4v" MPEG-4.
std::string_view videoCodecName(std::uint32_t subtypeCode);
// "aac " AAC, "alac" ALAC, "lpcm" PCM, ".mp3" MP3.
std::string_view audioCodecName(std::uint32_t subtypeCode);

} // namespace ConversionEngine
