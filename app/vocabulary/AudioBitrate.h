// SPDX-License-Identifier: GPL-3.0-or-later
// The audio bit rates the user can pick; the raw value is in kilobits per second, and
// bitsPerSecond is what crosses into the engine. Nothing lies between 64 and 128. Any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <array>
#include <optional>

namespace Ondrilet {

enum class AudioBitrate
{
    kbps16 = 16,
    kbps24 = 24,
    kbps32 = 32,
    kbps48 = 48,
    kbps64 = 64,
    kbps128 = 128,
    kbps192 = 192,
    kbps256 = 256,
    kbps320 = 320,
};

// Kilobits per second.
constexpr int rawValue(AudioBitrate bitrate)
{
    return static_cast<int>(bitrate);
}

constexpr int bitsPerSecond(AudioBitrate bitrate)
{
    return rawValue(bitrate) * 1000;
}

std::optional<AudioBitrate> audioBitrateFromRawValue(int kilobitsPerSecond);

// Every case in declared order, with its raw value.
inline constexpr auto audioBitrateTable = ConversionEngine::enumTable<AudioBitrate, int>({
    {AudioBitrate::kbps16, 16},
    {AudioBitrate::kbps24, 24},
    {AudioBitrate::kbps32, 32},
    {AudioBitrate::kbps48, 48},
    {AudioBitrate::kbps64, 64},
    {AudioBitrate::kbps128, 128},
    {AudioBitrate::kbps192, 192},
    {AudioBitrate::kbps256, 256},
    {AudioBitrate::kbps320, 320},
});
static_assert(audioBitrateTable.hasDistinctCases() && audioBitrateTable.rawValuesAreEnumerators());

inline const auto& allAudioBitrates()
{
    return audioBitrateTable.allCases();
}

} // namespace Ondrilet
