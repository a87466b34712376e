// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/inspection/VideoStream.h"

#include "ConversionEngine/core/CodecNames.h"
#include "ConversionEngine/core/StreamFigures.h"
#include "ConversionEngine/errors/MediaFileError.h"
#include "ConversionEngine/inspection/InterlacingDetector.h"
#include "platform/media/Size.h"

namespace ConversionEngine {

QCoro::Task<VideoStream> VideoStream::fromTrack(Platform::AssetTrack track, int index)
{
    const VideoStreamAnalysis analysis = co_await analyzeTrack(std::move(track), index);
    co_return analysis.stream;
}

QCoro::Task<VideoStreamAnalysis> VideoStream::analyzeTrack(Platform::AssetTrack track, int index)
{
    const std::vector<Platform::FormatDescription> descriptions =
        co_await track.loadFormatDescriptions();
    if (descriptions.empty())
        throw MediaFileError::invalidVideoTrack();
    const Platform::FormatDescription description = descriptions.front();

    VideoStreamAnalysis analysis;
    VideoStream& stream = analysis.stream;
    stream.id = QUuid::createUuid();
    stream.index = index;
    const std::string_view codec = videoCodecName(description.mediaSubType);
    stream.codec = QString::fromUtf8(codec.data(), qsizetype(codec.size()));
    const Platform::Size size = co_await track.loadNaturalSize();
    stream.resolution = QSizeF(size.width, size.height);
    // Each load into a named value of its own: a co_await inside a larger expression is where
    // GCC 12 has been seen to mishandle temporaries.
    const float framesPerSecond = co_await track.loadNominalFrameRate();
    stream.frameRate = double(framesPerSecond);
    const float dataRate = co_await track.loadEstimatedDataRate();
    stream.bitrate = videoBitRate(dataRate);

    analysis.interlacing = co_await InterlacingDetector::detectInterlacing(track, description);
    stream.isInterlaced = analysis.interlacing.isInterlaced;
    const FieldDominanceVerdict dominance =
        co_await InterlacingDetector::detectFieldDominance(track, description);
    analysis.fieldDominanceStep = dominance.step;
    if (dominance.dominance)
        stream.fieldDominance = InterlacingDetector::fieldDominance(*dominance.dominance);

    stream.aspectRatio = ConversionEngine::aspectRatio(size.width, size.height);
    co_return analysis;
}

} // namespace ConversionEngine
