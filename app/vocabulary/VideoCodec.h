// SPDX-License-Identifier: GPL-3.0-or-later
// The video codecs the user can pick; the raw value is also the label and the file-name token.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"

#include <QString>

#include <array>
#include <optional>

namespace Ondrilet {

enum class VideoCodec
{
    h264,
    h265,
    prores422,
    prores4444,
};

// "H.264", "H.265", "ProRes 422", "ProRes 4444".
QString rawValue(VideoCodec codec);
std::optional<VideoCodec> videoCodecFromRawValue(const QString& raw);
// The case's own name ("h265"), as console lines print it.
QString caseName(VideoCodec codec);

// Every case in declared order, with its raw value.
inline constexpr auto videoCodecTable = ConversionEngine::enumTable<VideoCodec, QStringView>({
    {VideoCodec::h264, u"H.264"},
    {VideoCodec::h265, u"H.265"},
    {VideoCodec::prores422, u"ProRes 422"},
    {VideoCodec::prores4444, u"ProRes 4444"},
});
static_assert(videoCodecTable.hasDistinctCases());

inline const auto& allVideoCodecs()
{
    return videoCodecTable.allCases();
}

} // namespace Ondrilet
