// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/presets/PresetManagerModel.h"

#include "ConversionEngine/core/FixedDecimals.h"
#include "app/presets/PresetStore.h"

#include <cmath>

namespace Ondrilet {

namespace {

// The value texts read the same in every locale, rounded as every other figure of the program.
QString fixedDecimals(double value, int decimals)
{
    return QString::fromStdString(ConversionEngine::FixedDecimals::text(value, decimals));
}

PresetEditingFields fieldsOf(const VideoPreset& preset)
{
    PresetEditingFields fields;
    fields.name = preset.name;
    fields.videoCodec = preset.videoCodec;
    fields.resolution = preset.resolution;
    fields.frameRate = preset.frameRate;
    fields.crf = preset.crf;
    fields.audioCodec = preset.audioCodec;
    fields.audioBitrate = preset.audioBitrate;
    fields.audioSampleRate = preset.audioSampleRate;
    fields.audioBitDepth = preset.audioBitDepth;
    fields.outputFormat = preset.outputFormat;
    fields.interlacingHandlingMode = preset.interlacingHandlingMode;
    fields.lufsPreset = preset.selectedLUFSPreset;
    fields.keepOriginalDate = preset.keepOriginalDate;
    fields.writeDateToFilename = preset.writeDateToFilename;
    return fields;
}

PresetEditingFields fieldsOf(const AudioPreset& preset)
{
    PresetEditingFields fields;
    fields.name = preset.name;
    fields.audioCodec = preset.audioCodec;
    fields.audioBitrate = preset.audioBitrate;
    fields.audioSampleRate = preset.audioSampleRate;
    fields.audioBitDepth = preset.audioBitDepth;
    fields.outputFormat = preset.outputFormat;
    fields.lufsPreset = preset.selectedLUFSPreset;
    fields.keepOriginalDate = preset.keepOriginalDate;
    fields.writeDateToFilename = preset.writeDateToFilename;
    return fields;
}

void takeLevel(PresetEditingFields& fields, const ConversionEngine::AudioLevelTarget& level)
{
    using Kind = ConversionEngine::AudioLevelTarget::Kind;
    switch (level.kind) {
    case Kind::none:
        fields.levelMode = LevelMode::none;
        break;
    case Kind::dbFS:
        fields.levelMode = LevelMode::dbfs;
        fields.dbfsTarget = level.target;
        break;
    case Kind::integratedLUFS:
        fields.levelMode = LevelMode::lufs;
        fields.lufsTarget = level.target;
        break;
    }
}

ConversionEngine::AudioLevelTarget levelOf(const PresetEditingFields& fields)
{
    switch (fields.levelMode) {
    case LevelMode::none:
        return ConversionEngine::AudioLevelTarget::none();
    case LevelMode::dbfs:
        return ConversionEngine::AudioLevelTarget::dbFS(fields.dbfsTarget);
    case LevelMode::lufs:
        return ConversionEngine::AudioLevelTarget::integratedLUFS(fields.lufsTarget);
    }
    return ConversionEngine::AudioLevelTarget::none();
}

// Every preset gets a fresh identifier, whatever kind it is.
AnyPreset withNewIdentifier(const AnyPreset& preset, const QString& name)
{
    if (const VideoPreset* video = preset.videoPreset()) {
        VideoPreset copy = *video;
        copy.id = QUuid::createUuid();
        copy.name = name;
        return AnyPreset::video(copy);
    }
    AudioPreset copy = *preset.audioPreset();
    copy.id = QUuid::createUuid();
    copy.name = name;
    return AnyPreset::audio(copy);
}

} // namespace

PresetManagerModel::PresetManagerModel(PresetStore* store, QObject* parent)
    : QObject(parent)
    , m_store(store)
{
    connect(store, &PresetStore::allPresetsChanged, this, &PresetManagerModel::presetsChanged);
}

const QList<AnyPreset>& PresetManagerModel::presets() const
{
    return m_store->allPresets();
}

QString PresetManagerModel::symbolName(const AnyPreset& preset)
{
    return preset.isVideo() ? QStringLiteral("video") : QStringLiteral("music.note");
}

void PresetManagerModel::select(const std::optional<QUuid>& id)
{
    m_selectedPresetID = id;
    emit selectionChanged(id);
    reload();
}

void PresetManagerModel::setEditing(const PresetEditingFields& fields)
{
    if (fields == m_editing)
        return;
    m_editing = fields;
    emit editingChanged();
}

void PresetManagerModel::reload()
{
    const std::optional<AnyPreset> preset =
        m_selectedPresetID ? m_store->preset(*m_selectedPresetID) : std::nullopt;
    PresetEditingFields fields;
    if (preset && preset->isVideo()) {
        fields = fieldsOf(*preset->videoPreset());
        takeLevel(fields, preset->videoPreset()->audioLevelProcessing);
    } else if (preset) {
        fields = fieldsOf(*preset->audioPreset());
        takeLevel(fields, preset->audioPreset()->audioLevelProcessing);
    }
    m_editing = fields;
    emit editingChanged();
}

void PresetManagerModel::selectFirstOrNone()
{
    const QList<AnyPreset>& list = m_store->allPresets();
    select(list.isEmpty() ? std::nullopt : std::optional<QUuid>(list.first().id()));
}

void PresetManagerModel::add()
{
    if (m_selectedPresetID) {
        duplicate();
        return;
    }
    VideoPreset preset;
    preset.name = QStringLiteral("New Preset ") + QString::number(m_store->allPresets().size() + 1);
    preset.outputFormat = OutputFormat::video(VideoFormat::mp4);
    preset.videoCodec = VideoCodec::h264;
    preset.resolution = VideoResolution::p1080;
    preset.frameRate = ConversionEngine::VideoFrameRate::source;
    preset.crf = 23;
    preset.audioCodec = AudioCodec::aac;
    preset.audioBitrate = AudioBitrate::kbps256;
    preset.audioSampleRate = SampleRate::rate44100;
    preset.audioBitDepth = std::nullopt;
    preset.interlacingHandlingMode = ConversionEngine::InterlacingHandlingMode::makeProgressive;
    preset.audioLevelProcessing = ConversionEngine::AudioLevelTarget::none();
    preset.keepOriginalDate = false;
    preset.writeDateToFilename = false;
    m_store->addPreset(AnyPreset::video(preset));
    select(preset.id);
}

QString PresetManagerModel::copyName(const QString& name)
{
    if (name.contains(QStringLiteral("Copy"), Qt::CaseSensitive))
        return name;
    return name + QStringLiteral(" Copy");
}

void PresetManagerModel::duplicate()
{
    if (!m_selectedPresetID)
        return;
    const std::optional<AnyPreset> original = m_store->preset(*m_selectedPresetID);
    if (!original)
        return;
    const AnyPreset copy = withNewIdentifier(*original, copyName(original->name()));
    m_store->addPreset(copy);
    select(copy.id());
}

AnyPreset PresetManagerModel::recordFromEditing(const QUuid& id) const
{
    const PresetEditingFields& fields = m_editing;
    if (fields.outputFormat.isAudio()) {
        AudioPreset preset;
        preset.id = id;
        preset.name = fields.name;
        preset.outputFormat = fields.outputFormat;
        preset.audioCodec = fields.audioCodec;
        preset.audioBitrate = fields.audioBitrate;
        preset.audioSampleRate = fields.audioSampleRate;
        preset.audioBitDepth = fields.audioBitDepth;
        preset.audioLevelProcessing = levelOf(fields);
        preset.selectedLUFSPreset = fields.lufsPreset;
        preset.keepOriginalDate = fields.keepOriginalDate;
        preset.writeDateToFilename = fields.writeDateToFilename;
        return AnyPreset::audio(preset);
    }
    VideoPreset preset;
    preset.id = id;
    preset.name = fields.name;
    preset.outputFormat = fields.outputFormat;
    preset.videoCodec = fields.videoCodec;
    preset.resolution = fields.resolution;
    preset.frameRate = fields.frameRate;
    preset.crf = fields.crf;
    preset.audioCodec = fields.audioCodec;
    preset.audioBitrate = fields.audioBitrate;
    preset.audioSampleRate = fields.audioSampleRate;
    preset.audioBitDepth = fields.audioBitDepth;
    preset.interlacingHandlingMode = fields.interlacingHandlingMode;
    preset.audioLevelProcessing = levelOf(fields);
    preset.selectedLUFSPreset = fields.lufsPreset;
    preset.keepOriginalDate = fields.keepOriginalDate;
    preset.writeDateToFilename = fields.writeDateToFilename;
    return AnyPreset::video(preset);
}

void PresetManagerModel::save()
{
    if (!m_selectedPresetID || !m_store->preset(*m_selectedPresetID))
        return;
    m_store->updatePreset(recordFromEditing(*m_selectedPresetID));
}

void PresetManagerModel::remove()
{
    if (!m_selectedPresetID)
        return;
    m_store->deletePreset(*m_selectedPresetID);
    selectFirstOrNone();
}

void PresetManagerModel::factoryReset()
{
    m_store->loadFactoryPresets();
    selectFirstOrNone();
}

QStringList PresetManagerModel::outputFormatLabels()
{
    QStringList labels;
    for (const OutputFormat& format : allOutputFormats())
        labels.append(displayName(format));
    return labels;
}

QStringList PresetManagerModel::videoCodecLabels()
{
    QStringList labels;
    for (VideoCodec codec : allVideoCodecs())
        labels.append(rawValue(codec));
    return labels;
}

QList<std::optional<VideoResolution>> PresetManagerModel::resolutionChoices()
{
    QList<std::optional<VideoResolution>> choices{std::nullopt};
    for (VideoResolution resolution : allVideoResolutions())
        choices.append(resolution);
    return choices;
}

QStringList PresetManagerModel::resolutionLabels()
{
    QStringList labels;
    for (const std::optional<VideoResolution>& choice : resolutionChoices())
        labels.append(choice ? rawValue(*choice) : QStringLiteral("Source"));
    return labels;
}

QStringList PresetManagerModel::frameRateLabels()
{
    QStringList labels;
    for (ConversionEngine::VideoFrameRate rate : ConversionEngine::allVideoFrameRates())
        labels.append(ConversionEngine::displayName(rate));
    return labels;
}

QStringList PresetManagerModel::interlacingLabels()
{
    QStringList labels;
    for (auto mode : ConversionEngine::allInterlacingHandlingModes())
        labels.append(ConversionEngine::rawValue(mode));
    return labels;
}

QList<AudioCodec> PresetManagerModel::audioCodecChoices()
{
    return {AudioCodec::aac, AudioCodec::heAac, AudioCodec::heAacV2, AudioCodec::alac,
            AudioCodec::pcm};
}

QStringList PresetManagerModel::audioCodecLabels()
{
    return {
        QStringLiteral("AAC (MP4/MOV) - Compressed"),
        QStringLiteral("HE-AAC (MP4/MOV) - High Efficiency"),
        QStringLiteral("HE-AAC v2 (MP4/MOV) - Ultra Efficient"),
        QStringLiteral("ALAC (MP4/MOV) - Lossless"),
        QStringLiteral("PCM (MOV only) - Uncompressed"),
    };
}

QStringList PresetManagerModel::sampleRateLabels()
{
    QStringList labels;
    for (SampleRate rate : allSampleRates())
        labels.append(rawValue(rate));
    return labels;
}

QStringList PresetManagerModel::bitDepthLabels()
{
    QStringList labels;
    for (BitDepth depth : allBitDepths())
        labels.append(QString::number(rawValue(depth)) + QStringLiteral("-bit"));
    return labels;
}

QList<AudioBitrate> PresetManagerModel::bitrateChoices(AudioCodec codec)
{
    const QList<AudioBitrate> common{AudioBitrate::kbps128, AudioBitrate::kbps192,
                                     AudioBitrate::kbps256, AudioBitrate::kbps320};
    if (codec == AudioCodec::heAacV2)
        return QList<AudioBitrate>{AudioBitrate::kbps16, AudioBitrate::kbps24,
                                   AudioBitrate::kbps32} +
               common;
    if (codec == AudioCodec::heAac)
        return QList<AudioBitrate>{AudioBitrate::kbps24, AudioBitrate::kbps32, AudioBitrate::kbps48,
                                   AudioBitrate::kbps64} +
               common;
    return common;
}

QStringList PresetManagerModel::bitrateLabels(AudioCodec codec)
{
    QStringList labels;
    for (AudioBitrate bitrate : bitrateChoices(codec))
        labels.append(QString::number(rawValue(bitrate)) + QStringLiteral(" kbps"));
    return labels;
}

QStringList PresetManagerModel::levelModeLabels()
{
    QStringList labels;
    for (LevelMode mode : allLevelModes())
        labels.append(displayName(mode));
    return labels;
}

QList<ConversionEngine::AudioLevelPreset> PresetManagerModel::lufsPresetChoices()
{
    using ConversionEngine::AudioLevelPreset;
    return {AudioLevelPreset::ebur128(),     AudioLevelPreset::atsc(),
            AudioLevelPreset::talkoverBed(), AudioLevelPreset::spotify(),
            AudioLevelPreset::youtube(),     AudioLevelPreset::custom(-23.0f)};
}

QStringList PresetManagerModel::lufsPresetLabels()
{
    return {QStringLiteral("EBU R128 (-23)"),     QStringLiteral("ATSC (-24)"),
            QStringLiteral("Talkover Bed (-33)"), QStringLiteral("Spotify (-14)"),
            QStringLiteral("YouTube (-13)"),      QStringLiteral("Custom")};
}

int PresetManagerModel::lufsPresetRow(const ConversionEngine::AudioLevelPreset& preset)
{
    const QList<ConversionEngine::AudioLevelPreset> choices = lufsPresetChoices();
    for (qsizetype row = 0; row < choices.size(); ++row)
        if (choices[row].kind == preset.kind)
            return int(row);
    return 0;
}

QString PresetManagerModel::dbfsText(float dbfs)
{
    return fixedDecimals(dbfs, 1) + QStringLiteral(" dBFS");
}

QString PresetManagerModel::lufsText(float lufs)
{
    return fixedDecimals(lufs, 0) + QStringLiteral(" LUFS");
}

void PresetManagerModel::pickLufsPreset(int row)
{
    const QList<ConversionEngine::AudioLevelPreset> choices = lufsPresetChoices();
    if (row < 0 || row >= choices.size())
        return;
    PresetEditingFields fields = m_editing;
    if (choices[row].kind == ConversionEngine::AudioLevelPreset::Kind::custom) {
        fields.lufsPreset =
            ConversionEngine::AudioLevelPreset::custom(std::round(fields.lufsTarget));
    } else {
        fields.lufsPreset = choices[row];
        fields.lufsTarget = ConversionEngine::lufsValue(choices[row]);
    }
    setEditing(fields);
}

void PresetManagerModel::setCustomLufs(float lufs)
{
    PresetEditingFields fields = m_editing;
    fields.lufsTarget = lufs;
    fields.lufsPreset = ConversionEngine::AudioLevelPreset::custom(lufs);
    setEditing(fields);
}

} // namespace Ondrilet
