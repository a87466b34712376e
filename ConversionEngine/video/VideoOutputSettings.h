// SPDX-License-Identifier: GPL-3.0-or-later
// The writer's settings for the video of a conversion, from a few facts of the source track and the
// chosen codec, size and CRF number, printing the reasoning to the console as it goes: the size,
// the colour tags (reported only; the encoder decides), the bit rate or ProRes quality, and the
// container. Any thread.
#pragma once

#include "ConversionEngine/core/VideoDimensions.h"
#include "ConversionEngine/vocabulary/VideoCodec.h"
#include "ConversionEngine/vocabulary/VideoConversionSettings.h"
#include "ConversionEngine/vocabulary/VideoResolution.h"
#include "platform/media/FileType.h"
#include "platform/media/SettingsDictionary.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace ConversionEngine {

// What the settings read of the source's first video track.
struct VideoSourceFacts
{
    // From the first format description; absent when the track has none.
    std::optional<VideoSize> codedSize;
    // The fallback when there is no description.
    VideoSize naturalSize;
    // Colour tags of the description, each absent when the stream does not say.
    std::optional<QString> colorPrimaries;
    std::optional<QString> transferFunction;
    std::optional<QString> yCbCrMatrix;
};

struct VideoOutputSettingsResult
{
    Platform::SettingsDictionary settings;
    double width = 0.0;
    double height = 0.0;
};

class VideoOutputSettings
{
public:
    // The names of the writer's codecs and of the fixed H.264 choices.
    static QString codecName(VideoCodec codec);
    static const QString profileH264HighAutoLevel;
    static const QString entropyModeCABAC;
    static const QString itu709;

    static VideoOutputSettingsResult build(const VideoSourceFacts& source, std::int64_t crf,
                                           VideoCodec codec,
                                           std::optional<VideoResolution> resolution);
    // Bits per second for H.264 and HEVC; prints the curve's line.
    static std::int64_t bitrateForCRF(std::int64_t crf, double width, double height);
    // Prints a line when ProRes overrides the chosen format.
    static Platform::FileType outputFileType(const VideoConversionSettings& settings);

private:
    static VideoSize sourceSize(const VideoSourceFacts& source);
    static VideoSize outputSize(VideoSize source, std::optional<VideoResolution> resolution);
    static Platform::SettingsDictionary compressionProperties(std::int64_t crf, VideoCodec codec,
                                                              VideoSize size);
};

} // namespace ConversionEngine
