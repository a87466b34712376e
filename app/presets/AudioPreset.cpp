// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/presets/AudioPreset.h"

#include "app/presets/PresetFields.h"

#include <QHashFunctions>
#include <QStringList>

namespace Ondrilet {

namespace {

// Names that always show the same text, with upper-case formats and "kHz" without a blank,
// unlike the built texts. Several belong to no built-in preset.
constexpr PresetFields::FixedDescription fixedDescriptions[] = {
    {"WAV 24/48 (PCM)", "WAV, 24-bit, 48kHz"},
    {"WAV 24/96 (PCM)", "WAV, 24-bit, 96kHz"},
    {"AIFF 16/44.1 (PCM)", "AIFF, 16-bit, 44.1kHz"},
    {"ALAC 24/96", "M4A, ALAC, 24/96"},
    {"CAF 24/48 (PCM)", "CAF, 24-bit, 48kHz"},
    {"HE-AAC v2 128k/48", "M4A, HE-AAC v2, 128k"},
    {"AAC 256k/44.1", "M4A, AAC, 256k"},
    {"AAC 128k/44.1", "M4A, AAC, 128k"},
    {"M4A 192k/48", "M4A, AAC, 192k, 48kHz"},
    {"HE-AAC 128k/44.1", "M4A, HE-AAC, 128k"},
};

QString builtDescription(const AudioPreset& preset)
{
    QStringList parts;
    if (preset.outputFormat.isAudio())
        parts << rawValue(preset.outputFormat.audioFormat).toLower();
    parts << rawValue(preset.audioCodec);
    if (preset.audioBitrate)
        parts << QString::number(rawValue(*preset.audioBitrate)) + QLatin1Char('k');
    if (preset.audioBitDepth)
        parts << QString::number(rawValue(*preset.audioBitDepth)) + QStringLiteral("-bit");
    parts << rawValue(preset.audioSampleRate);
    return parts.join(QStringLiteral(", "));
}

} // namespace

QString AudioPreset::presetDescription() const
{
    if (std::optional<QString> text = PresetFields::fixedDescription(name, fixedDescriptions))
        return *text;
    return builtDescription(*this);
}

size_t qHash(const AudioPreset& preset, size_t seed)
{
    const OutputFormat& format = preset.outputFormat;
    return qHashMulti(seed, preset.id, preset.name, format.isVideo(),
                      PresetFields::outputFormatLabel(format), rawValue(preset.audioCodec),
                      preset.audioBitrate ? rawValue(*preset.audioBitrate) : 0,
                      rawValue(preset.audioSampleRate),
                      preset.audioBitDepth ? rawValue(*preset.audioBitDepth) : 0,
                      static_cast<int>(preset.audioLevelProcessing.kind),
                      PresetFields::levelTargetValue(preset.audioLevelProcessing),
                      static_cast<int>(preset.selectedLUFSPreset.kind),
                      PresetFields::customLufsValue(preset.selectedLUFSPreset),
                      preset.keepOriginalDate, preset.writeDateToFilename);
}

QList<AudioPreset> factoryAudioPresets()
{
    using ConversionEngine::AudioLevelPreset;
    using ConversionEngine::AudioLevelTarget;

    // Every field is spelled out, so that a change of the record's defaults cannot move them.
    return {
        AudioPreset{
            .id = QUuid::createUuid(),
            .name = QStringLiteral("WAV 24/48 (PCM)"),
            .outputFormat = OutputFormat::audio(AudioFormat::wav),
            .audioCodec = AudioCodec::pcm,
            .audioBitrate = std::nullopt,
            .audioSampleRate = SampleRate::rate48000,
            .audioBitDepth = BitDepth::depth24,
            .audioLevelProcessing = AudioLevelTarget::none(),
            .selectedLUFSPreset = AudioLevelPreset::ebur128(),
            .keepOriginalDate = false,
            .writeDateToFilename = false,
        },
        // No bit depth although the name says 24: the name is only a name.
        AudioPreset{
            .id = QUuid::createUuid(),
            .name = QStringLiteral("ALAC 24/96"),
            .outputFormat = OutputFormat::audio(AudioFormat::m4a),
            .audioCodec = AudioCodec::alac,
            .audioBitrate = std::nullopt,
            .audioSampleRate = SampleRate::rate96000,
            .audioBitDepth = std::nullopt,
            .audioLevelProcessing = AudioLevelTarget::none(),
            .selectedLUFSPreset = AudioLevelPreset::ebur128(),
            .keepOriginalDate = false,
            .writeDateToFilename = false,
        },
        AudioPreset{
            .id = QUuid::createUuid(),
            .name = QStringLiteral("CAF 24/48 (PCM)"),
            .outputFormat = OutputFormat::audio(AudioFormat::caf),
            .audioCodec = AudioCodec::pcm,
            .audioBitrate = std::nullopt,
            .audioSampleRate = SampleRate::rate48000,
            .audioBitDepth = BitDepth::depth24,
            .audioLevelProcessing = AudioLevelTarget::none(),
            .selectedLUFSPreset = AudioLevelPreset::ebur128(),
            .keepOriginalDate = false,
            .writeDateToFilename = false,
        },
        AudioPreset{
            .id = QUuid::createUuid(),
            .name = QStringLiteral("HE-AAC v2 24k/48 (DAB+)"),
            .outputFormat = OutputFormat::audio(AudioFormat::m4a),
            .audioCodec = AudioCodec::heAacV2,
            .audioBitrate = AudioBitrate::kbps24,
            .audioSampleRate = SampleRate::rate48000,
            .audioBitDepth = std::nullopt,
            .audioLevelProcessing = AudioLevelTarget::none(),
            .selectedLUFSPreset = AudioLevelPreset::ebur128(),
            .keepOriginalDate = false,
            .writeDateToFilename = false,
        },
        AudioPreset{
            .id = QUuid::createUuid(),
            .name = QStringLiteral("AAC 256k/44.1"),
            .outputFormat = OutputFormat::audio(AudioFormat::m4a),
            .audioCodec = AudioCodec::aac,
            .audioBitrate = AudioBitrate::kbps256,
            .audioSampleRate = SampleRate::rate44100,
            .audioBitDepth = std::nullopt,
            .audioLevelProcessing = AudioLevelTarget::none(),
            .selectedLUFSPreset = AudioLevelPreset::ebur128(),
            .keepOriginalDate = false,
            .writeDateToFilename = false,
        },
    };
}

} // namespace Ondrilet
