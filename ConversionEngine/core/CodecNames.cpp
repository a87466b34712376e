// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/core/CodecNames.h"

#include "ConversionEngine/core/AudioCodecKind.h"

namespace ConversionEngine {

std::string_view videoCodecName(std::uint32_t subtypeCode)
{
    switch (subtypeCode) {
    case fourCharacterCode("avc1"):
        return "H.264";
    case fourCharacterCode("hvc1"):
        return "H.265";
    case fourCharacterCode("jpeg"):
        return "JPEG";
    case fourCharacterCode("mp4v"):
        return "MPEG-4";
    default:
        return "Unknown";
    }
}

std::string_view audioCodecName(std::uint32_t subtypeCode)
{
    switch (subtypeCode) {
    case fourCharacterCode("aac "):
        return "AAC";
    case fourCharacterCode("alac"):
        return "ALAC";
    case fourCharacterCode("lpcm"):
        return "PCM";
    case fourCharacterCode(".mp3"):
        return "MP3";
    default:
        return "Unknown";
    }
}

} // namespace ConversionEngine
