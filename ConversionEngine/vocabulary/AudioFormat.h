// SPDX-License-Identifier: GPL-3.0-or-later
// The audio containers the audio engine writes, with the writer's file type for each.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"
#include "platform/media/FileType.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class AudioFormat
{
    aiff,
    wav,
    m4a,
    caf,
};

// "aiff", "wav", "m4a", "CAF": the CAF value is upper case on purpose.
// Held by tst_enginevocabulary::audioFormatTable.
QString rawValue(AudioFormat format);
// Exact, case-sensitive lookup: "caf" finds nothing, "CAF" finds caf.
std::optional<AudioFormat> audioFormatFromRawValue(const QString& raw);
Platform::FileType fileType(AudioFormat format);
// True for m4a only, decided by the raw value.
bool isCompressed(AudioFormat format);

// Every case in declared order, with its raw value.
inline constexpr auto audioFormatTable = enumTable<AudioFormat, QStringView>({
    {AudioFormat::aiff, u"aiff"},
    {AudioFormat::wav, u"wav"},
    {AudioFormat::m4a, u"m4a"},
    {AudioFormat::caf, u"CAF"},
});
static_assert(audioFormatTable.hasDistinctCases());

inline const auto& allAudioFormats()
{
    return audioFormatTable.allCases();
}

} // namespace ConversionEngine
