// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/presets/VideoPreset.h"

#include "app/presets/PresetFields.h"

#include <QHashFunctions>
#include <QStringList>

namespace Ondrilet {

namespace {

// Names that always show the same text. Most belong to no built-in preset and are kept for
// presets that users give these names; "H.264 High 4K" has no video codec in its text.
constexpr PresetFields::FixedDescription fixedDescriptions[] = {
    {"ProRes 422 4K Master", "MOV, 4K, ProRes 422, PCM"},
    {"H.264 High 4K", "MOV, 4K, PCM"},
    {"H.265 Master", "MOV, 4K, H.265, PCM"},
    {"ProRes 4444 4K Alpha", "MOV, 4K, ProRes 4444, PCM"},
    {"ProRes 422 1080p", "MOV, 1080p, ProRes 422, PCM"},
    {"YouTube 4K", "MP4, 4K, AAC"},
    {"YouTube 1080p", "MP4, 1080p, AAC"},
    {"Mobile HD", "MP4, 720p, AAC"},
    {"Archival 4K", "MOV, 4K, H.265, ALAC"},
};

QString builtDescription(const VideoPreset& preset)
{
    QStringList parts;
    if (preset.outputFormat.isVideo())
        parts << rawValue(preset.outputFormat.videoFormat);
    if (preset.resolution)
        parts << rawValue(*preset.resolution);
    parts << rawValue(preset.videoCodec) << rawValue(preset.audioCodec);
    return parts.join(QStringLiteral(", "));
}

} // namespace

QString VideoPreset::presetDescription() const
{
    if (std::optional<QString> text = PresetFields::fixedDescription(name, fixedDescriptions))
        return *text;
    return builtDescription(*this);
}

size_t qHash(const VideoPreset& preset, size_t seed)
{
    const OutputFormat& format = preset.outputFormat;
    return qHashMulti(
        seed, preset.id, preset.name, format.isVideo(), PresetFields::outputFormatLabel(format),
        rawValue(preset.videoCodec), preset.resolution.has_value(),
        preset.resolution ? rawValue(*preset.resolution) : QString(),
        ConversionEngine::rawValue(preset.frameRate), preset.crf, rawValue(preset.audioCodec),
        preset.audioBitrate ? rawValue(*preset.audioBitrate) : 0, rawValue(preset.audioSampleRate),
        preset.audioBitDepth ? rawValue(*preset.audioBitDepth) : 0,
        ConversionEngine::rawValue(preset.interlacingHandlingMode),
        static_cast<int>(preset.audioLevelProcessing.kind),
        PresetFields::levelTargetValue(preset.audioLevelProcessing),
        static_cast<int>(preset.selectedLUFSPreset.kind),
        PresetFields::customLufsValue(preset.selectedLUFSPreset), preset.keepOriginalDate,
        preset.writeDateToFilename);
}

QList<VideoPreset> factoryVideoPresets()
{
    using ConversionEngine::AudioLevelPreset;
    using ConversionEngine::AudioLevelTarget;
    using ConversionEngine::InterlacingHandlingMode;
    using ConversionEngine::VideoFrameRate;

    // Every field is spelled out, so that a change of the record's defaults cannot move them.
    return {
        VideoPreset{
            .id = QUuid::createUuid(),
            .name = QStringLiteral("H.264 Broadcast 25fps"),
            .outputFormat = OutputFormat::video(VideoFormat::mov),
            .videoCodec = VideoCodec::h264,
            .resolution = std::nullopt,
            .frameRate = VideoFrameRate::fps25,
            .crf = 20,
            .audioCodec = AudioCodec::pcm,
            .audioBitrate = std::nullopt,
            .audioSampleRate = SampleRate::rate48000,
            .audioBitDepth = BitDepth::depth24,
            .interlacingHandlingMode = InterlacingHandlingMode::keepOriginal,
            .audioLevelProcessing = AudioLevelTarget::integratedLUFS(-23.0f),
            .selectedLUFSPreset = AudioLevelPreset::ebur128(),
            .keepOriginalDate = false,
            .writeDateToFilename = false,
        },
        // 16-bit on purpose, unlike its 24-bit neighbours. Held by
        // tst_presetrecords::factoryVideoPresetsFieldByField.
        VideoPreset{
            .id = QUuid::createUuid(),
            .name = QStringLiteral("ProRes 422 1080p"),
            .outputFormat = OutputFormat::video(VideoFormat::mov),
            .videoCodec = VideoCodec::prores422,
            .resolution = VideoResolution::p1080,
            .frameRate = VideoFrameRate::source,
            .crf = 23,
            .audioCodec = AudioCodec::pcm,
            .audioBitrate = std::nullopt,
            .audioSampleRate = SampleRate::rate48000,
            .audioBitDepth = BitDepth::depth16,
            .interlacingHandlingMode = InterlacingHandlingMode::keepOriginal,
            .audioLevelProcessing = AudioLevelTarget::none(),
            .selectedLUFSPreset = AudioLevelPreset::ebur128(),
            .keepOriginalDate = false,
            .writeDateToFilename = false,
        },
        VideoPreset{
            .id = QUuid::createUuid(),
            .name = QStringLiteral("ProRes 4444 4K Alpha"),
            .outputFormat = OutputFormat::video(VideoFormat::mov),
            .videoCodec = VideoCodec::prores4444,
            .resolution = VideoResolution::p2160,
            .frameRate = VideoFrameRate::source,
            .crf = 18,
            .audioCodec = AudioCodec::pcm,
            .audioBitrate = std::nullopt,
            .audioSampleRate = SampleRate::rate48000,
            .audioBitDepth = BitDepth::depth24,
            .interlacingHandlingMode = InterlacingHandlingMode::keepOriginal,
            .audioLevelProcessing = AudioLevelTarget::none(),
            .selectedLUFSPreset = AudioLevelPreset::ebur128(),
            .keepOriginalDate = false,
            .writeDateToFilename = false,
        },
        VideoPreset{
            .id = QUuid::createUuid(),
            .name = QStringLiteral("H.265 Master 4K"),
            .outputFormat = OutputFormat::video(VideoFormat::mp4),
            .videoCodec = VideoCodec::h265,
            .resolution = VideoResolution::p2160,
            .frameRate = VideoFrameRate::source,
            .crf = 18,
            .audioCodec = AudioCodec::aac,
            .audioBitrate = AudioBitrate::kbps256,
            .audioSampleRate = SampleRate::rate48000,
            .audioBitDepth = std::nullopt,
            .interlacingHandlingMode = InterlacingHandlingMode::makeProgressive,
            .audioLevelProcessing = AudioLevelTarget::none(),
            .selectedLUFSPreset = AudioLevelPreset::ebur128(),
            .keepOriginalDate = false,
            .writeDateToFilename = false,
        },
        VideoPreset{
            .id = QUuid::createUuid(),
            .name = QStringLiteral("YouTube 1080p"),
            .outputFormat = OutputFormat::video(VideoFormat::mp4),
            .videoCodec = VideoCodec::h264,
            .resolution = VideoResolution::p1080,
            .frameRate = VideoFrameRate::source,
            .crf = 23,
            .audioCodec = AudioCodec::aac,
            .audioBitrate = AudioBitrate::kbps192,
            .audioSampleRate = SampleRate::rate44100,
            .audioBitDepth = std::nullopt,
            .interlacingHandlingMode = InterlacingHandlingMode::makeProgressive,
            .audioLevelProcessing = AudioLevelTarget::none(),
            .selectedLUFSPreset = AudioLevelPreset::ebur128(),
            .keepOriginalDate = false,
            .writeDateToFilename = false,
        },
    };
}

} // namespace Ondrilet
