// SPDX-License-Identifier: GPL-3.0-or-later
// The video codecs the video engine encodes to, with the media layer's codec for each.
// Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"
#include "platform/media/VideoCodecType.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class VideoCodec
{
    h264,
    hevc,
    prores422,
    prores4444,
};

// "H.264", "HEVC", "ProRes 422", "ProRes 4444".
QString rawValue(VideoCodec codec);
std::optional<VideoCodec> videoCodecFromRawValue(const QString& raw);
Platform::VideoCodecType codecType(VideoCodec codec);
// True for ProRes 4444 only, decided by the raw value.
bool supportsAlpha(VideoCodec codec);

// Every case in declared order, with its raw value.
inline constexpr auto videoCodecTable = enumTable<VideoCodec, QStringView>({
    {VideoCodec::h264, u"H.264"},
    {VideoCodec::hevc, u"HEVC"},
    {VideoCodec::prores422, u"ProRes 422"},
    {VideoCodec::prores4444, u"ProRes 4444"},
});
static_assert(videoCodecTable.hasDistinctCases());

inline const auto& allVideoCodecs()
{
    return videoCodecTable.allCases();
}

} // namespace ConversionEngine
