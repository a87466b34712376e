// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/window/ConversionControls.h"

#include "ConversionEngine/core/FixedDecimals.h"
#include "app/window/WindowTexts.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Ondrilet {

using ConversionEngine::AudioLevelPreset;
using ConversionEngine::AudioLevelTarget;
using ConversionEngine::VideoFrameRate;

namespace {

QString videoPanelCodecLabel(AudioCodec codec)
{
    switch (codec) {
    case AudioCodec::aac:
        return QStringLiteral("AAC (MP4/MOV) - Compressed");
    case AudioCodec::alac:
        return QStringLiteral("ALAC (MP4/MOV) - Lossless");
    case AudioCodec::pcm:
        return QStringLiteral("PCM (MOV only) - Uncompressed");
    case AudioCodec::heAac:
        return QStringLiteral("HE-AAC (MP4/MOV) - High Efficiency");
    case AudioCodec::heAacV2:
        return QStringLiteral("HE-AAC v2 (MP4/MOV) - Ultra Efficient");
    }
    return {};
}

QString audioPanelCodecLabel(AudioCodec codec)
{
    switch (codec) {
    case AudioCodec::aac:
        return QStringLiteral("AAC (Compressed)");
    case AudioCodec::alac:
        return QStringLiteral("ALAC (Lossless)");
    case AudioCodec::pcm:
        return QStringLiteral("PCM (Uncompressed)");
    case AudioCodec::heAac:
        return QStringLiteral("HE-AAC (High Efficiency)");
    case AudioCodec::heAacV2:
        return QStringLiteral("HE-AAC v2 (High Efficiency v2)");
    }
    return {};
}

bool isAacFamily(AudioCodec codec)
{
    return codec == AudioCodec::aac || codec == AudioCodec::heAac || codec == AudioCodec::heAacV2;
}

qint64 wholeMegabits(qint64 bitsPerSecond)
{
    return bitsPerSecond / 1000000;
}

} // namespace

QList<AudioCodec> ConversionControls::allowedAudioCodecs(const OutputFormat& format)
{
    if (format.isVideo()) {
        QList<AudioCodec> codecs{AudioCodec::aac, AudioCodec::heAac, AudioCodec::heAacV2,
                                 AudioCodec::alac};
        if (format.videoFormat == VideoFormat::mov)
            codecs.append(AudioCodec::pcm);
        return codecs;
    }
    if (format.audioFormat == AudioFormat::m4a)
        return {AudioCodec::aac, AudioCodec::heAac, AudioCodec::heAacV2, AudioCodec::alac};
    return {AudioCodec::pcm};
}

AudioCodec ConversionControls::validatedAudioCodec(const OutputFormat& format, AudioCodec codec)
{
    const bool uncompressedOnly = format.isAudio() && format.audioFormat != AudioFormat::m4a;
    if (uncompressedOnly)
        return AudioCodec::pcm;
    return allowedAudioCodecs(format).contains(codec) ? codec : AudioCodec::aac;
}

QList<ConversionControls::AudioCodecChoice>
ConversionControls::audioCodecChoices(const OutputFormat& format)
{
    QList<AudioCodecChoice> choices;
    for (AudioCodec codec : allowedAudioCodecs(format))
        choices.append(
            {codec, format.isVideo() ? videoPanelCodecLabel(codec) : audioPanelCodecLabel(codec)});
    return choices;
}

std::optional<QString> ConversionControls::audioCodecHint(const OutputFormat& format,
                                                          AudioCodec codec)
{
    switch (codec) {
    case AudioCodec::aac:
        return format.isVideo() ? QStringLiteral("Recommended: 128+ kbps (high quality)")
                                : QStringLiteral("Recommended: 128+ kbps for high quality");
    case AudioCodec::heAac:
        return format.isVideo() ? QStringLiteral("Recommended: 24-64 kbps (mobile streaming)")
                                : QStringLiteral("Recommended: 24-64 kbps (32-48 kbps optimal)");
    case AudioCodec::heAacV2:
        return QStringLiteral("Recommended: 16-32 kbps (stereo only)");
    case AudioCodec::alac:
    case AudioCodec::pcm:
        return std::nullopt;
    }
    return std::nullopt;
}

bool ConversionControls::showsAudioRows(const OutputFormat& format, AudioHandlingMode handling)
{
    return format.isAudio() || handling == AudioHandlingMode::reencode;
}

bool ConversionControls::showsBitDepthRow(AudioCodec codec)
{
    return codec == AudioCodec::pcm;
}

bool ConversionControls::showsBitrateRow(AudioCodec codec)
{
    return isAacFamily(codec);
}

QList<ConversionControls::BitrateChoice> ConversionControls::bitrateChoices(AudioCodec codec)
{
    using B = AudioBitrate;
    QList<AudioBitrate> offered;
    QList<AudioBitrate> marked;
    switch (codec) {
    case AudioCodec::aac:
        offered = {B::kbps32, B::kbps48, B::kbps64, B::kbps128, B::kbps192, B::kbps256, B::kbps320};
        marked = {B::kbps128, B::kbps192, B::kbps256, B::kbps320};
        break;
    case AudioCodec::heAac:
        offered = {B::kbps24, B::kbps32, B::kbps48, B::kbps64, B::kbps128, B::kbps192, B::kbps256};
        marked = {B::kbps24, B::kbps32, B::kbps48, B::kbps64};
        break;
    case AudioCodec::heAacV2:
        offered = {B::kbps16, B::kbps24, B::kbps32, B::kbps48, B::kbps64, B::kbps128, B::kbps192};
        marked = {B::kbps16, B::kbps24, B::kbps32};
        break;
    case AudioCodec::alac:
    case AudioCodec::pcm:
        for (AudioBitrate bitrate : allAudioBitrates())
            offered.append(bitrate);
        break;
    }
    QList<BitrateChoice> choices;
    for (AudioBitrate bitrate : offered) {
        const bool recommended = marked.contains(bitrate);
        QString label = QStringLiteral("%1 kbps").arg(rawValue(bitrate));
        if (recommended)
            label += QStringLiteral(" ✓");
        choices.append({bitrate, label, recommended});
    }
    return choices;
}

QString ConversionControls::resolutionChoiceLabel(const std::optional<VideoResolution>& resolution)
{
    return resolution ? rawValue(*resolution) : WindowTexts::originalResolutionChoice;
}

QString ConversionControls::frameRateChoiceLabel(VideoFrameRate rate)
{
    return ConversionEngine::displayName(rate);
}

QString ConversionControls::audioHandlingChoiceLabel(AudioHandlingMode mode)
{
    return mode == AudioHandlingMode::passthrough ? WindowTexts::passthroughChoice
                                                  : WindowTexts::reencodeChoice;
}

QString ConversionControls::bitDepthChoiceLabel(BitDepth depth)
{
    return QStringLiteral("%1-bit").arg(rawValue(depth));
}

QString ConversionControls::frameRateCaseName(VideoFrameRate rate)
{
    switch (rate) {
    case VideoFrameRate::source:
        return QStringLiteral("source");
    case VideoFrameRate::fps23976:
        return QStringLiteral("fps23976");
    case VideoFrameRate::fps24:
        return QStringLiteral("fps24");
    case VideoFrameRate::fps25:
        return QStringLiteral("fps25");
    case VideoFrameRate::fps2997:
        return QStringLiteral("fps2997");
    case VideoFrameRate::fps30:
        return QStringLiteral("fps30");
    case VideoFrameRate::fps50:
        return QStringLiteral("fps50");
    case VideoFrameRate::fps5994:
        return QStringLiteral("fps5994");
    case VideoFrameRate::fps60:
        return QStringLiteral("fps60");
    }
    return {};
}

QString ConversionControls::crfDescription(qint64 crf)
{
    QString tail;
    if (crf >= 5 && crf <= 10)
        tail = QStringLiteral(": Almost no compression; human eye can't distinguish below ~10");
    else if (crf >= 11 && crf <= 14)
        tail =
            QStringLiteral(": Extremely high quality; file size skyrockets; practically lossless");
    else if (crf >= 15 && crf <= 17)
        tail = QStringLiteral(": Very high quality; large file; near visually lossless");
    else if (crf >= 18 && crf <= 23)
        tail =
            QStringLiteral(": Visually transparent; indistinguishable from source to most viewers");
    else if (crf >= 24 && crf <= 27)
        tail = QStringLiteral(": Good quality; balanced file size");
    else if (crf >= 28 && crf <= 35)
        tail = QStringLiteral(": Lower quality; streaming-friendly; smaller files");
    else
        tail = QStringLiteral(": Lower = higher quality, larger files");
    return QStringLiteral("CRF %1").arg(crf) + tail;
}

int ConversionControls::crfFromSlider(double value)
{
    if (!std::isfinite(value))
        return 0;
    const double truncated = std::trunc(value);
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(truncated, lowest, highest));
}

ConversionControls::BitrateRange ConversionControls::afterMinMoved(const BitrateRange& range,
                                                                   qint64 minBitsPerSecond)
{
    BitrateRange moved = range;
    moved.minBitsPerSecond = minBitsPerSecond;
    moved.maxBitsPerSecond = std::max(minBitsPerSecond + 1000000, range.maxBitsPerSecond);
    return moved;
}

ConversionControls::BitrateRange ConversionControls::afterMaxMoved(const BitrateRange& range,
                                                                   qint64 maxBitsPerSecond)
{
    BitrateRange moved = range;
    moved.maxBitsPerSecond = maxBitsPerSecond;
    moved.minBitsPerSecond = std::min(maxBitsPerSecond - 1000000, range.minBitsPerSecond);
    return moved;
}

ConversionControls::BitrateRange ConversionControls::afterTargetMoved(const BitrateRange& range,
                                                                      qint64 targetBitsPerSecond)
{
    BitrateRange moved = range;
    moved.targetBitsPerSecond = targetBitsPerSecond;
    moved.minBitsPerSecond = std::min(targetBitsPerSecond / 2, range.minBitsPerSecond);
    moved.maxBitsPerSecond = std::max(2 * targetBitsPerSecond, range.maxBitsPerSecond);
    return moved;
}

QString ConversionControls::mbpsText(qint64 bitsPerSecond)
{
    return QStringLiteral("%1 Mbps").arg(wholeMegabits(bitsPerSecond));
}

QString ConversionControls::rangeText(qint64 minBitsPerSecond, qint64 maxBitsPerSecond)
{
    return QStringLiteral("%1-%2 Mbps")
        .arg(wholeMegabits(minBitsPerSecond))
        .arg(wholeMegabits(maxBitsPerSecond));
}

QString ConversionControls::qualityTag(const QualityMode& quality)
{
    switch (quality.kind) {
    case QualityMode::Kind::constant:
        return QStringLiteral("CRF%1").arg(quality.crf);
    case QualityMode::Kind::averageBitrate:
        return QStringLiteral("ABR%1M").arg(wholeMegabits(quality.bitrate));
    case QualityMode::Kind::variableBitrate:
        return QStringLiteral("VBR%1-%2M")
            .arg(wholeMegabits(quality.min))
            .arg(wholeMegabits(quality.max));
    case QualityMode::Kind::twoPassVBR:
        return QStringLiteral("2Pass%1M(%2-%3)")
            .arg(wholeMegabits(quality.target))
            .arg(wholeMegabits(quality.min))
            .arg(wholeMegabits(quality.max));
    }
    return {};
}

AudioLevelTarget ConversionControls::levelProcessingFor(LevelMode mode, float dbfsTarget,
                                                        float lufsTarget)
{
    switch (mode) {
    case LevelMode::none:
        return AudioLevelTarget::none();
    case LevelMode::dbfs:
        return AudioLevelTarget::dbFS(dbfsTarget);
    case LevelMode::lufs:
        return AudioLevelTarget::integratedLUFS(lufsTarget);
    }
    return AudioLevelTarget::none();
}

AudioLevelPreset ConversionControls::lufsPresetForValue(float lufs)
{
    if (lufs == -23.0f)
        return AudioLevelPreset::ebur128();
    if (lufs == -24.0f)
        return AudioLevelPreset::atsc();
    if (lufs == -33.0f)
        return AudioLevelPreset::talkoverBed();
    if (lufs == -14.0f)
        return AudioLevelPreset::spotify();
    if (lufs == -13.0f)
        return AudioLevelPreset::youtube();
    return AudioLevelPreset::custom(lufs);
}

QList<AudioLevelPreset> ConversionControls::lufsPresetChoices(float customLufs)
{
    return {AudioLevelPreset::ebur128(),     AudioLevelPreset::atsc(),
            AudioLevelPreset::talkoverBed(), AudioLevelPreset::spotify(),
            AudioLevelPreset::youtube(),     AudioLevelPreset::custom(customLufs)};
}

QString ConversionControls::lufsPresetChoiceLabel(const AudioLevelPreset& preset)
{
    // The picker has one "Custom" entry, whatever value it carries.
    if (preset.kind == AudioLevelPreset::Kind::custom)
        return WindowTexts::customLufsChoice;
    return ConversionEngine::displayName(preset);
}

QString ConversionControls::dbfsSliderText(float dbfs)
{
    return QStringLiteral("Target Peak Level: ") +
           QString::fromStdString(ConversionEngine::FixedDecimals::text(dbfs, 1)) +
           QStringLiteral(" dBFS");
}

QString ConversionControls::lufsSliderText(float lufs)
{
    return QStringLiteral("Target Loudness: ") +
           QString::fromStdString(ConversionEngine::FixedDecimals::text(lufs, 0)) +
           QStringLiteral(" LUFS");
}

} // namespace Ondrilet
