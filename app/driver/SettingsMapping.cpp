// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/driver/SettingsMapping.h"

#include "platform/foundation/Console.h"

#include <QtGlobal>

namespace Ondrilet {

namespace {

[[noreturn]] void trap(const QString& text)
{
    qFatal("%s", qPrintable(text));
}

ConversionEngine::VideoCodec engineCodec(VideoCodec codec)
{
    switch (codec) {
    case VideoCodec::h264:
        return ConversionEngine::VideoCodec::h264;
    case VideoCodec::h265:
        return ConversionEngine::VideoCodec::hevc;
    case VideoCodec::prores422:
        return ConversionEngine::VideoCodec::prores422;
    case VideoCodec::prores4444:
        return ConversionEngine::VideoCodec::prores4444;
    }
    trap(QStringLiteral("No engine video codec for this codec"));
}

// The engine has 480p in front; each application size maps to the next engine case.
ConversionEngine::VideoResolution engineResolution(VideoResolution resolution)
{
    switch (resolution) {
    case VideoResolution::p720:
        return ConversionEngine::VideoResolution::hd720;
    case VideoResolution::p1080:
        return ConversionEngine::VideoResolution::hd1080;
    case VideoResolution::p2160:
        return ConversionEngine::VideoResolution::uhd4k;
    }
    trap(QStringLiteral("No engine video resolution for this resolution"));
}

ConversionEngine::QualityMode engineQuality(const QualityMode& quality)
{
    using EngineMode = ConversionEngine::QualityMode;
    switch (quality.kind) {
    case QualityMode::Kind::constant:
        return EngineMode::constant(quality.crf);
    case QualityMode::Kind::averageBitrate:
        return EngineMode::averageBitrate(quality.bitrate);
    case QualityMode::Kind::variableBitrate:
        return EngineMode::variableBitrate(quality.min, quality.max);
    case QualityMode::Kind::twoPassVBR:
        return EngineMode::twoPassVBR(quality.target, quality.min, quality.max);
    }
    trap(QStringLiteral("No engine quality mode for this quality mode"));
}

ConversionEngine::AudioCodec engineCodec(AudioCodec codec)
{
    switch (codec) {
    case AudioCodec::aac:
        return ConversionEngine::AudioCodec::aac;
    case AudioCodec::alac:
        return ConversionEngine::AudioCodec::alac;
    case AudioCodec::pcm:
        return ConversionEngine::AudioCodec::pcm;
    case AudioCodec::heAac:
        return ConversionEngine::AudioCodec::heAac;
    case AudioCodec::heAacV2:
        return ConversionEngine::AudioCodec::heAacV2;
    }
    trap(QStringLiteral("No engine audio codec for this codec"));
}

ConversionEngine::SampleRate engineSampleRate(SampleRate rate)
{
    switch (rate) {
    case SampleRate::rate44100:
        return ConversionEngine::SampleRate::rate44100;
    case SampleRate::rate48000:
        return ConversionEngine::SampleRate::rate48000;
    case SampleRate::rate96000:
        return ConversionEngine::SampleRate::rate96000;
    }
    trap(QStringLiteral("No engine sample rate for this sample rate"));
}

ConversionEngine::BitDepth engineBitDepth(BitDepth depth)
{
    switch (depth) {
    case BitDepth::depth16:
        return ConversionEngine::BitDepth::depth16;
    case BitDepth::depth24:
        return ConversionEngine::BitDepth::depth24;
    }
    trap(QStringLiteral("No engine bit depth for this bit depth"));
}

ConversionEngine::AudioBitrate engineBitrate(AudioBitrate bitrate)
{
    const int bits = bitsPerSecond(bitrate);
    const std::optional<ConversionEngine::AudioBitrate> mapped =
        ConversionEngine::audioBitrateFromRawValue(bits);
    if (!mapped)
        trap(QStringLiteral("Invalid audio bitrate: %1").arg(bits));
    return *mapped;
}

} // namespace

ConversionEngine::VideoConversionSettings mapVideoSettings(const VideoSettings& settings,
                                                           VideoFormat format)
{
    const QString formatRaw = rawValue(format);
    const std::optional<ConversionEngine::VideoFormat> outputFormat =
        ConversionEngine::videoFormatFromRawValue(formatRaw);
    if (!outputFormat)
        trap(QStringLiteral("No engine video format has the raw value: %1").arg(formatRaw));

    Platform::Console::print(QStringLiteral("🔍 mapVideoSettings called:"));
    Platform::Console::print(QStringLiteral("   settings.resolution: ") +
                             labelOrNil(settings.resolution));
    Platform::Console::print(QStringLiteral("   settings.codec: ") + caseName(settings.codec));

    std::optional<ConversionEngine::VideoResolution> resolution;
    if (settings.resolution) {
        // The application's label stands on both sides of the arrow; that is the line as it is.
        const QString label = rawValue(*settings.resolution);
        Platform::Console::print(QStringLiteral("   Mapping resolution: ") + label +
                                 QStringLiteral(" -> ") + label);
        resolution = engineResolution(*settings.resolution);
    }
    Platform::Console::print(
        QStringLiteral("   Mapped resolution: ") +
        (resolution ? ConversionEngine::rawValue(*resolution) : QStringLiteral("nil")));

    ConversionEngine::VideoConversionSettings mapped;
    mapped.outputFormat = *outputFormat;
    mapped.codec = engineCodec(settings.codec);
    mapped.resolution = resolution;
    mapped.resolutionMode = ConversionEngine::ResolutionMode::fit;
    mapped.frameRate = settings.frameRate;
    mapped.qualityMode = engineQuality(settings.quality);
    // The export quality of a preset never reaches the engine on this road.
    mapped.exportQuality = ConversionEngine::VideoExportQuality::highest;
    return mapped;
}

ConversionEngine::AudioFormat mapAudioFormat(AudioFormat format)
{
    const QString raw = rawValue(format);
    const std::optional<ConversionEngine::AudioFormat> mapped =
        ConversionEngine::audioFormatFromRawValue(raw);
    if (!mapped)
        trap(QStringLiteral("No engine audio format has the raw value: %1").arg(raw));
    return *mapped;
}

ConversionEngine::AudioSettings
mapAudioSettings(const AudioSettings& settings,
                 const ConversionEngine::AudioLevelTarget& levelProcessing)
{
    ConversionEngine::AudioSettings mapped;
    mapped.codec = engineCodec(settings.codec);
    mapped.sampleRate = engineSampleRate(settings.sampleRate);
    if (settings.bitDepth)
        mapped.bitDepth = engineBitDepth(*settings.bitDepth);
    if (settings.bitrate)
        mapped.bitrate = engineBitrate(*settings.bitrate);
    mapped.levelProcessing = levelProcessing;
    return mapped;
}

} // namespace Ondrilet
