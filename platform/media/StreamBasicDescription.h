// SPDX-License-Identifier: GPL-3.0-or-later
// How one audio track's samples are laid out in the file: rate, channels, bits and the format
// code. Compressed formats have no fixed bytes per frame and report 0 there. Any thread.
#pragma once

#include <cstdint>

namespace Platform {

struct StreamBasicDescription
{
    // Bits of formatFlags for linear PCM.
    static constexpr std::uint32_t flagIsFloat = 1u << 0;
    static constexpr std::uint32_t flagIsBigEndian = 1u << 1;
    static constexpr std::uint32_t flagIsSignedInteger = 1u << 2;
    static constexpr std::uint32_t flagIsPacked = 1u << 3;
    static constexpr std::uint32_t flagIsNonInterleaved = 1u << 5;

    double sampleRate = 0.0;
    // A four-character code: 'lpcm' for linear PCM, 'aac ', 'alac', '.mp3', 'flac', 'opus', …;
    // 0 for a codec without one.
    std::uint32_t formatId = 0;
    std::uint32_t formatFlags = 0;
    std::uint32_t bytesPerPacket = 0;
    std::uint32_t framesPerPacket = 0;
    std::uint32_t bytesPerFrame = 0;
    std::uint32_t channelsPerFrame = 0;
    // The stored depth of a PCM or lossless track; 0 for a lossy one.
    std::uint32_t bitsPerChannel = 0;

    bool operator==(const StreamBasicDescription&) const = default;
};

} // namespace Platform
