// SPDX-License-Identifier: GPL-3.0-or-later
// The bit rates of compressed audio output; the raw value is in bits per second. The three
// membership tests say which rates suit which codec; no conversion consults them. Any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class AudioBitrate
{
    kbps16 = 16000,
    kbps24 = 24000,
    kbps32 = 32000,
    kbps48 = 48000,
    kbps64 = 64000,
    kbps128 = 128000,
    kbps192 = 192000,
    kbps256 = 256000,
    kbps320 = 320000,
};

// Bits per second.
constexpr int rawValue(AudioBitrate bitrate)
{
    return static_cast<int>(bitrate);
}

std::optional<AudioBitrate> audioBitrateFromRawValue(int bitsPerSecond);
// "128 kbps".
QString displayName(AudioBitrate bitrate);
bool isOptimalForHEAACv2(AudioBitrate bitrate);
bool isOptimalForHEAAC(AudioBitrate bitrate);
bool isOptimalForAAC(AudioBitrate bitrate);

// Every case in declared order, with its raw value.
inline constexpr auto audioBitrateTable = enumTable<AudioBitrate, int>({
    {AudioBitrate::kbps16, 16000},
    {AudioBitrate::kbps24, 24000},
    {AudioBitrate::kbps32, 32000},
    {AudioBitrate::kbps48, 48000},
    {AudioBitrate::kbps64, 64000},
    {AudioBitrate::kbps128, 128000},
    {AudioBitrate::kbps192, 192000},
    {AudioBitrate::kbps256, 256000},
    {AudioBitrate::kbps320, 320000},
});
static_assert(audioBitrateTable.hasDistinctCases() && audioBitrateTable.rawValuesAreEnumerators());

inline const auto& allAudioBitrates()
{
    return audioBitrateTable.allCases();
}

} // namespace ConversionEngine
