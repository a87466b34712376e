// SPDX-License-Identifier: GPL-3.0-or-later
// The audio codecs the engine can be asked to write, as core sees them (the engine's audio codec
// cases in the same order), with the four-character format identifier each one is written with.
// Any thread.
#pragma once

#include <cstdint>
#include <string_view>

namespace ConversionEngine {

enum class AudioCodecKind
{
    aac,
    alac,
    pcm,
    heAac,
    heAacV2,
};

// The writer's format identifier: four characters, trailing blank included for "aac ".
constexpr std::string_view formatIdentifier(AudioCodecKind codec)
{
    switch (codec) {
    case AudioCodecKind::aac:
        return "aac ";
    case AudioCodecKind::alac:
        return "alac";
    case AudioCodecKind::pcm:
        return "lpcm";
    case AudioCodecKind::heAac:
        return "aach";
    case AudioCodecKind::heAacV2:
        return "aacp";
    }
    return "";
}

// A four-character identifier as the unsigned 32-bit number it stands for, first character in the
// most significant byte ("lpcm" is 0x6C70636D). Anything not four characters long gives 0.
constexpr std::uint32_t fourCharacterCode(std::string_view identifier)
{
    if (identifier.size() != 4)
        return 0;
    std::uint32_t code = 0;
    for (const char character : identifier)
        code = (code << 8) | static_cast<unsigned char>(character);
    return code;
}

} // namespace ConversionEngine
