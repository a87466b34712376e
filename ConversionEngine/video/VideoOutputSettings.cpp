// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/video/VideoOutputSettings.h"

#include "ConversionEngine/core/VideoFileKind.h"
#include "ConversionEngine/core/VideoQualityCurve.h"
#include "ConversionEngine/video/VideoConsoleText.h"
#include "platform/foundation/Console.h"

namespace ConversionEngine {

namespace {

using Platform::Console;
namespace Key = Platform::SettingsKey;

constexpr std::int64_t bitsPerMegabit = 1000000;

QString sizeText(VideoSize size)
{
    return QStringLiteral("%1×%2").arg(size.width).arg(size.height);
}

QString decimalSizeText(VideoSize size)
{
    return QStringLiteral("%1×%2").arg(VideoConsoleText::number(double(size.width)),
                                       VideoConsoleText::number(double(size.height)));
}

VideoCodecKind codecKind(VideoCodec codec)
{
    switch (codec) {
    case VideoCodec::h264:
        return VideoCodecKind::h264;
    case VideoCodec::hevc:
        return VideoCodecKind::hevc;
    case VideoCodec::prores422:
        return VideoCodecKind::proRes422;
    case VideoCodec::prores4444:
        return VideoCodecKind::proRes4444;
    }
    return VideoCodecKind::h264;
}

VideoContainerKind containerKind(VideoFormat format)
{
    switch (format) {
    case VideoFormat::mp4:
        return VideoContainerKind::mp4;
    case VideoFormat::mov:
        return VideoContainerKind::mov;
    case VideoFormat::m4v:
        return VideoContainerKind::m4v;
    }
    return VideoContainerKind::mp4;
}

} // namespace

const QString VideoOutputSettings::profileH264HighAutoLevel = QStringLiteral("H264_High_AutoLevel");
const QString VideoOutputSettings::entropyModeCABAC = QStringLiteral("CABAC");
const QString VideoOutputSettings::itu709 = QStringLiteral("ITU_R_709_2");

QString VideoOutputSettings::codecName(VideoCodec codec)
{
    switch (codec) {
    case VideoCodec::h264:
        return QStringLiteral("avc1");
    case VideoCodec::hevc:
        return QStringLiteral("hvc1");
    case VideoCodec::prores422:
        return QStringLiteral("apcn");
    case VideoCodec::prores4444:
        return QStringLiteral("ap4h");
    }
    return {};
}

VideoSize VideoOutputSettings::sourceSize(const VideoSourceFacts& source)
{
    // The coded size is the size of the pictures; the natural size may be a display size.
    if (source.codedSize) {
        Console::print(QStringLiteral("📐 Coded dimensions: %1 (actual pixel buffer size)")
                           .arg(sizeText(*source.codedSize)));
        return *source.codedSize;
    }
    Console::print(
        QStringLiteral("📐 Using naturalSize: %1 (fallback)").arg(sizeText(source.naturalSize)));
    return source.naturalSize;
}

VideoSize VideoOutputSettings::outputSize(VideoSize source,
                                          std::optional<VideoResolution> resolution)
{
    std::optional<VideoSize> preset;
    if (resolution)
        preset = VideoSize{width(*resolution), height(*resolution)};
    const VideoDimensions dimensions = outputVideoDimensions(source, preset);
    switch (dimensions.rule) {
    case VideoDimensions::Rule::source:
        if (dimensions.adjustedOddSides)
            Console::print(QStringLiteral("⚠️ Adjusted odd dimensions: %1 → %2")
                               .arg(sizeText(source), sizeText(dimensions.size)));
        Console::print(
            QStringLiteral("🎯 Using source dimensions: %1").arg(sizeText(dimensions.size)));
        break;
    case VideoDimensions::Rule::exactMatch:
        Console::print(QStringLiteral("🎯 Using target dimensions: %1 (exact match)")
                           .arg(sizeText(dimensions.size)));
        break;
    case VideoDimensions::Rule::sameAspect:
        Console::print(QStringLiteral("🎯 Using target dimensions: %1 (will scale from %2)")
                           .arg(sizeText(dimensions.size), sizeText(source)));
        break;
    case VideoDimensions::Rule::scaledToHeight:
        Console::print(
            QStringLiteral("🎯 Scaled dimensions to maintain aspect ratio: %1 (AR: %2)")
                .arg(sizeText(dimensions.size), VideoConsoleText::number(aspectRatio(source))));
        Console::print(QStringLiteral("   Source: %1, Target preset: %2")
                           .arg(sizeText(source), decimalSizeText(*preset)));
        break;
    }
    return dimensions.size;
}

Platform::SettingsDictionary
VideoOutputSettings::compressionProperties(std::int64_t crf, VideoCodec codec, VideoSize size)
{
    Platform::SettingsDictionary properties;
    switch (codec) {
    case VideoCodec::h264:
        properties.set(Key::videoAverageBitRate,
                       QVariant::fromValue(qint64(bitrateForCRF(crf, size.width, size.height))));
        properties.set(Key::videoProfileLevel, profileH264HighAutoLevel);
        properties.set(Key::videoH264EntropyMode, entropyModeCABAC);
        break;
    case VideoCodec::hevc:
        properties.set(Key::videoAverageBitRate,
                       QVariant::fromValue(qint64(bitrateForCRF(crf, size.width, size.height))));
        break;
    case VideoCodec::prores422:
        properties.set(Key::videoQuality, VideoQualityCurve::proResQuality(crf));
        break;
    case VideoCodec::prores4444:
        properties.set(Key::videoQuality, VideoQualityCurve::proResQuality(crf));
        properties.set(Key::pixelFormatType,
                       QVariant::fromValue(quint32(Platform::PixelFormatType::yuva4444x16)));
        break;
    }
    return properties;
}

VideoOutputSettingsResult VideoOutputSettings::build(const VideoSourceFacts& source,
                                                     std::int64_t crf, VideoCodec codec,
                                                     std::optional<VideoResolution> resolution)
{
    const VideoSize size = outputSize(sourceSize(source), resolution);

    if (source.codedSize) {
        Console::print(QStringLiteral("📺 Source color properties:"));
        Console::print(QStringLiteral("   Primaries: %1")
                           .arg(source.colorPrimaries.value_or(QStringLiteral("unknown"))));
        Console::print(QStringLiteral("   Transfer: %1")
                           .arg(source.transferFunction.value_or(QStringLiteral("unknown"))));
        Console::print(QStringLiteral("   Matrix: %1")
                           .arg(source.yCbCrMatrix.value_or(QStringLiteral("unknown"))));
    }
    // Reported only: no colour key reaches the encoder.
    const QString primaries = source.colorPrimaries.value_or(itu709);
    const QString transfer = source.transferFunction.value_or(itu709);
    const QString matrix = source.yCbCrMatrix.value_or(itu709);
    Console::print(QStringLiteral("📺 Using color properties:"));
    Console::print(QStringLiteral("   Primaries: %1").arg(primaries));
    Console::print(QStringLiteral("   Transfer: %1").arg(transfer));
    Console::print(QStringLiteral("   Matrix: %1").arg(matrix));

    VideoOutputSettingsResult result;
    result.width = size.width;
    result.height = size.height;
    result.settings.set(Key::videoCodec, codecName(codec));
    result.settings.set(Key::videoWidth, size.width);
    result.settings.set(Key::videoHeight, size.height);
    result.settings.set(Key::videoCompressionProperties,
                        QVariant::fromValue(compressionProperties(crf, codec, size)));

    Console::print(QStringLiteral("🎯 CRF %1 video settings (color handled by encoder): %2")
                       .arg(crf)
                       .arg(result.settings.toString()));
    Console::print(QStringLiteral("   Source had: %1, %2, %3").arg(primaries, transfer, matrix));
    return result;
}

std::int64_t VideoOutputSettings::bitrateForCRF(std::int64_t crf, double width, double height)
{
    const double bitsPerPixel = VideoQualityCurve::bitsPerPixel(crf);
    const std::int64_t bitRate = VideoQualityCurve::bitRate(crf, width, height);
    Console::print(QStringLiteral("🎯 CRF %1 → %2 bpp → %3 bps (%4 Mbps) for %5x%6")
                       .arg(crf)
                       .arg(VideoConsoleText::fixed(bitsPerPixel, 3))
                       .arg(bitRate)
                       .arg(bitRate / bitsPerMegabit)
                       .arg(VideoConsoleText::number(width), VideoConsoleText::number(height)));
    return bitRate;
}

Platform::FileType VideoOutputSettings::outputFileType(const VideoConversionSettings& settings)
{
    const VideoCodecKind codec = codecKind(settings.codec);
    if (isProRes(codec))
        Console::print(QStringLiteral("🔧 Using .mov file type for ProRes %1 in CRF mode")
                           .arg(rawValue(settings.codec)));
    return videoFileKind(codec, containerKind(settings.outputFormat)) ==
                   VideoFileKind::quickTimeMovie
               ? Platform::FileType::quickTimeMovie
               : Platform::FileType::mpeg4;
}

} // namespace ConversionEngine
