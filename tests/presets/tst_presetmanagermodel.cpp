// SPDX-License-Identifier: GPL-3.0-or-later
// The Preset Manager's rules on a real store: selection and reload, add, duplicate, save, remove,
// factory reset, and the pickers' rows.
#include "app/presets/PresetManagerModel.h"
#include "app/presets/PresetStore.h"

#include <QLocale>
#include <QTest>

#include <clocale>

using namespace Ondrilet;

namespace {

QStringList namesOf(const QList<AnyPreset>& presets)
{
    QStringList names;
    for (const AnyPreset& preset : presets)
        names << preset.name();
    return names;
}

AnyPreset userVideo(const QString& name)
{
    VideoPreset preset;
    preset.name = name;
    return AnyPreset::video(preset);
}

} // namespace

class PresetManagerModelTest : public QObject
{
    Q_OBJECT

private slots:
    void startsWithNothingSelected();
    void selectionCopiesTheRecordIntoTheEditor();
    void deletingTheOnlyPresetThenAddingNumbersFromOne();
    void addWithNoneSelectedNumbersByCount();
    void addWithNoneSelectedMakesTheDefaultVideoPreset();
    void addWithASelectionDuplicates();
    void duplicateKeepsACapitalCopyAndAppendsOtherwise_data();
    void duplicateKeepsACapitalCopyAndAppendsOtherwise();
    void duplicateOfACopyGivesASecondPresetOfTheSameName();
    void savingAVideoPresetAsAudioKeepsItsIdentifierAndPlace();
    void savingRebuildsTheLevelFromTheMode();
    void savingAnEmptyNameIsAllowed();
    void saveLeavesOtherPresetsAndTheSelection();
    void removeSelectsTheFirstOrNothing();
    void removeWithNothingSelectedDoesNothing();
    void factoryResetDropsUserPresets();
    void unsavedEditsAreDroppedByTheReload();
    void bitrateRowsFollowTheCodec();
    void pickerRows();
    void valueTextsIgnoreTheCLocale();
};

void PresetManagerModelTest::startsWithNothingSelected()
{
    PresetStore store;
    PresetManagerModel model(&store);
    QVERIFY(!model.selectedPresetID());
    QCOMPARE(model.presets().size(), 10);
}

void PresetManagerModelTest::selectionCopiesTheRecordIntoTheEditor()
{
    PresetStore store;
    PresetManagerModel model(&store);
    const AnyPreset audio = store.allPresets().last();
    QVERIFY(audio.isAudio());
    model.select(audio.id());
    QCOMPARE(model.editing().name, audio.name());
    QCOMPARE(model.editing().outputFormat, audio.audioPreset()->outputFormat);
    QCOMPARE(model.editing().audioCodec, audio.audioPreset()->audioCodec);
    QCOMPARE(model.editing().audioSampleRate, audio.audioPreset()->audioSampleRate);

    const AnyPreset video = store.allPresets().first();
    model.select(video.id());
    QCOMPARE(model.editing().name, video.name());
    QCOMPARE(model.editing().crf, video.videoPreset()->crf);
    QCOMPARE(model.editing().frameRate, video.videoPreset()->frameRate);
}

void PresetManagerModelTest::deletingTheOnlyPresetThenAddingNumbersFromOne()
{
    PresetStore store;
    store.setAllPresets({userVideo(QStringLiteral("Only"))});
    PresetManagerModel model(&store);
    model.select(store.allPresets().first().id());
    model.remove();
    QVERIFY(store.allPresets().isEmpty());
    QVERIFY(!model.selectedPresetID());

    model.add();
    QCOMPARE(namesOf(store.allPresets()), QStringList{QStringLiteral("New Preset 1")});
    QCOMPARE(model.selectedPresetID(), std::optional<QUuid>(store.allPresets().first().id()));
    QCOMPARE(model.editing().name, QStringLiteral("New Preset 1"));
}

void PresetManagerModelTest::addWithNoneSelectedNumbersByCount()
{
    PresetStore store;
    store.setAllPresets({userVideo(QStringLiteral("A")), userVideo(QStringLiteral("New Preset 4")),
                         userVideo(QStringLiteral("C"))});
    PresetManagerModel model(&store);
    model.add();
    QCOMPARE(store.allPresets().size(), 4);
    QCOMPARE(namesOf(store.allPresets()).count(QStringLiteral("New Preset 4")), 2);
}

void PresetManagerModelTest::addWithNoneSelectedMakesTheDefaultVideoPreset()
{
    PresetStore store;
    store.setAllPresets({});
    PresetManagerModel model(&store);
    model.add();
    const AnyPreset made = store.allPresets().first();
    QVERIFY(made.isVideo());
    const VideoPreset& video = *made.videoPreset();
    QCOMPARE(video.outputFormat, OutputFormat::video(VideoFormat::mp4));
    QCOMPARE(video.videoCodec, VideoCodec::h264);
    QCOMPARE(video.resolution, std::optional<VideoResolution>(VideoResolution::p1080));
    QCOMPARE(video.frameRate, ConversionEngine::VideoFrameRate::source);
    QCOMPARE(video.crf, 23);
    QCOMPARE(video.audioCodec, AudioCodec::aac);
    QCOMPARE(video.audioBitrate, std::optional<AudioBitrate>(AudioBitrate::kbps256));
    QCOMPARE(video.audioSampleRate, SampleRate::rate44100);
    QVERIFY(!video.audioBitDepth);
    QCOMPARE(video.interlacingHandlingMode,
             ConversionEngine::InterlacingHandlingMode::makeProgressive);
    QVERIFY(video.audioLevelProcessing.isNone());
    QVERIFY(!video.keepOriginalDate);
    QVERIFY(!video.writeDateToFilename);
}

void PresetManagerModelTest::addWithASelectionDuplicates()
{
    PresetStore store;
    store.setAllPresets({userVideo(QStringLiteral("Mine"))});
    PresetManagerModel model(&store);
    model.select(store.allPresets().first().id());
    model.add();
    QCOMPARE(namesOf(store.allPresets()),
             (QStringList{QStringLiteral("Mine"), QStringLiteral("Mine Copy")}));
    QCOMPARE(model.selectedPresetID(), std::optional<QUuid>(store.allPresets().last().id()));
}

void PresetManagerModelTest::duplicateKeepsACapitalCopyAndAppendsOtherwise_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("copy");
    QTest::newRow("capital at the start") << "Copy of mine"
                                          << "Copy of mine";
    QTest::newRow("capital inside") << "ProCopyMaster"
                                    << "ProCopyMaster";
    QTest::newRow("small letters only") << "my copy"
                                        << "my copy Copy";
    QTest::newRow("none") << "Broadcast"
                          << "Broadcast Copy";
}

void PresetManagerModelTest::duplicateKeepsACapitalCopyAndAppendsOtherwise()
{
    QFETCH(QString, name);
    QFETCH(QString, copy);
    PresetStore store;
    store.setAllPresets({userVideo(name)});
    PresetManagerModel model(&store);
    model.select(store.allPresets().first().id());
    model.duplicate();
    QCOMPARE(store.allPresets().size(), 2);
    QCOMPARE(store.allPresets().last().name(), copy);
    QVERIFY(store.allPresets().last().id() != store.allPresets().first().id());
    QCOMPARE(model.editing().name, copy);
}

void PresetManagerModelTest::duplicateOfACopyGivesASecondPresetOfTheSameName()
{
    PresetStore store;
    store.setAllPresets({userVideo(QStringLiteral("Mine"))});
    PresetManagerModel model(&store);
    model.select(store.allPresets().first().id());
    model.duplicate();
    model.duplicate();
    QCOMPARE(namesOf(store.allPresets()),
             (QStringList{QStringLiteral("Mine"), QStringLiteral("Mine Copy"),
                          QStringLiteral("Mine Copy")}));
}

void PresetManagerModelTest::savingAVideoPresetAsAudioKeepsItsIdentifierAndPlace()
{
    PresetStore store;
    const QList<AnyPreset> before = store.allPresets();
    const AnyPreset second = before.at(1);
    QVERIFY(second.isVideo());
    PresetManagerModel model(&store);
    model.select(second.id());
    PresetEditingFields fields = model.editing();
    fields.outputFormat = OutputFormat::audio(AudioFormat::wav);
    fields.audioCodec = AudioCodec::pcm;
    fields.audioBitDepth = BitDepth::depth24;
    fields.name = QStringLiteral("Now audio");
    model.setEditing(fields);
    model.save();

    QCOMPARE(store.allPresets().size(), before.size());
    const AnyPreset saved = store.allPresets().at(1);
    QVERIFY(saved.isAudio());
    QCOMPARE(saved.id(), second.id());
    QCOMPARE(saved.name(), QStringLiteral("Now audio"));
    QCOMPARE(saved.audioPreset()->outputFormat, OutputFormat::audio(AudioFormat::wav));
    QCOMPARE(saved.audioPreset()->audioBitDepth, std::optional<BitDepth>(BitDepth::depth24));
    QCOMPARE(model.selectedPresetID(), std::optional<QUuid>(second.id()));
    for (qsizetype i = 0; i < before.size(); ++i)
        if (i != 1)
            QCOMPARE(store.allPresets().at(i), before.at(i));
}

void PresetManagerModelTest::savingRebuildsTheLevelFromTheMode()
{
    PresetStore store;
    store.setAllPresets({userVideo(QStringLiteral("Mine"))});
    PresetManagerModel model(&store);
    model.select(store.allPresets().first().id());
    PresetEditingFields fields = model.editing();
    fields.levelMode = LevelMode::dbfs;
    fields.dbfsTarget = -3.5f;
    fields.lufsTarget = -16.0f;
    model.setEditing(fields);
    model.save();
    QCOMPARE(store.allPresets().first().videoPreset()->audioLevelProcessing,
             ConversionEngine::AudioLevelTarget::dbFS(-3.5f));

    model.pickLufsPreset(3); // Spotify
    fields = model.editing();
    fields.levelMode = LevelMode::lufs;
    model.setEditing(fields);
    model.save();
    const VideoPreset saved = *store.allPresets().first().videoPreset();
    QCOMPARE(saved.audioLevelProcessing,
             ConversionEngine::AudioLevelTarget::integratedLUFS(-14.0f));
    QCOMPARE(saved.selectedLUFSPreset, ConversionEngine::AudioLevelPreset::spotify());

    model.setCustomLufs(-19.0f);
    model.save();
    QCOMPARE(store.allPresets().first().videoPreset()->selectedLUFSPreset,
             ConversionEngine::AudioLevelPreset::custom(-19.0f));
    QCOMPARE(store.allPresets().first().videoPreset()->audioLevelProcessing,
             ConversionEngine::AudioLevelTarget::integratedLUFS(-19.0f));

    fields = model.editing();
    fields.levelMode = LevelMode::none;
    model.setEditing(fields);
    model.save();
    QVERIFY(store.allPresets().first().videoPreset()->audioLevelProcessing.isNone());
}

void PresetManagerModelTest::savingAnEmptyNameIsAllowed()
{
    PresetStore store;
    PresetManagerModel model(&store);
    const QUuid first = store.allPresets().first().id();
    model.select(first);
    PresetEditingFields fields = model.editing();
    fields.name.clear();
    model.setEditing(fields);
    model.save();
    QCOMPARE(store.preset(first)->name(), QString());
}

void PresetManagerModelTest::saveLeavesOtherPresetsAndTheSelection()
{
    PresetStore store;
    PresetManagerModel model(&store);
    model.save(); // nothing selected: nothing happens
    QCOMPARE(store.allPresets().size(), 10);
    const QUuid third = store.allPresets().at(2).id();
    model.select(third);
    PresetEditingFields fields = model.editing();
    fields.crf = 30;
    model.setEditing(fields);
    model.save();
    QCOMPARE(store.preset(third)->videoPreset()->crf, 30);
    QCOMPARE(model.selectedPresetID(), std::optional<QUuid>(third));
}

void PresetManagerModelTest::removeSelectsTheFirstOrNothing()
{
    PresetStore store;
    PresetManagerModel model(&store);
    const QUuid fourth = store.allPresets().at(3).id();
    model.select(fourth);
    model.remove();
    QVERIFY(!store.preset(fourth));
    QCOMPARE(store.allPresets().size(), 9);
    QCOMPARE(model.selectedPresetID(), std::optional<QUuid>(store.allPresets().first().id()));
    QCOMPARE(model.editing().name, store.allPresets().first().name());
}

void PresetManagerModelTest::removeWithNothingSelectedDoesNothing()
{
    PresetStore store;
    PresetManagerModel model(&store);
    model.remove();
    QCOMPARE(store.allPresets().size(), 10);
    QVERIFY(!model.selectedPresetID());
}

void PresetManagerModelTest::factoryResetDropsUserPresets()
{
    PresetStore store;
    const QStringList factoryNames = namesOf(store.allPresets());
    store.addPreset(userVideo(QStringLiteral("Mine")));
    PresetManagerModel model(&store);
    model.select(store.allPresets().at(1).id());
    model.factoryReset();
    QCOMPARE(namesOf(store.allPresets()), factoryNames);
    QCOMPARE(model.selectedPresetID(), std::optional<QUuid>(store.allPresets().first().id()));
}

void PresetManagerModelTest::unsavedEditsAreDroppedByTheReload()
{
    PresetStore store;
    PresetManagerModel model(&store);
    const AnyPreset first = store.allPresets().first();
    model.select(first.id());
    PresetEditingFields fields = model.editing();
    fields.name = QStringLiteral("Edited");
    model.setEditing(fields);
    model.select(store.allPresets().at(1).id());
    model.select(first.id());
    QCOMPARE(model.editing().name, first.name());
    QCOMPARE(store.preset(first.id())->name(), first.name());
}

void PresetManagerModelTest::bitrateRowsFollowTheCodec()
{
    const QStringList common{QStringLiteral("128 kbps"), QStringLiteral("192 kbps"),
                             QStringLiteral("256 kbps"), QStringLiteral("320 kbps")};
    QCOMPARE(PresetManagerModel::bitrateLabels(AudioCodec::heAacV2),
             (QStringList{QStringLiteral("16 kbps"), QStringLiteral("24 kbps"),
                          QStringLiteral("32 kbps")} +
              common));
    QCOMPARE(PresetManagerModel::bitrateLabels(AudioCodec::heAac),
             (QStringList{QStringLiteral("24 kbps"), QStringLiteral("32 kbps"),
                          QStringLiteral("48 kbps"), QStringLiteral("64 kbps")} +
              common));
    for (AudioCodec codec : {AudioCodec::aac, AudioCodec::alac, AudioCodec::pcm})
        QCOMPARE(PresetManagerModel::bitrateLabels(codec), common);
}

void PresetManagerModelTest::pickerRows()
{
    QCOMPARE(PresetManagerModel::outputFormatLabels(),
             (QStringList{"Video (MP4)", "Video (MOV)", "Audio (AIFF)", "Audio (WAV)",
                          "Audio (M4A)", "Audio (CAF)"}));
    QCOMPARE(PresetManagerModel::videoCodecLabels(),
             (QStringList{"H.264", "H.265", "ProRes 422", "ProRes 4444"}));
    QCOMPARE(PresetManagerModel::resolutionLabels(),
             (QStringList{"Source", "720p", "1080p", "4K"}));
    QCOMPARE(PresetManagerModel::frameRateLabels().first(), QStringLiteral("Source"));
    QCOMPARE(PresetManagerModel::frameRateLabels().size(), 9);
    QCOMPARE(PresetManagerModel::interlacingLabels(),
             (QStringList{"Keep Original", "Make Progressive"}));
    QCOMPARE(PresetManagerModel::audioCodecLabels(),
             (QStringList{"AAC (MP4/MOV) - Compressed", "HE-AAC (MP4/MOV) - High Efficiency",
                          "HE-AAC v2 (MP4/MOV) - Ultra Efficient", "ALAC (MP4/MOV) - Lossless",
                          "PCM (MOV only) - Uncompressed"}));
    QCOMPARE(PresetManagerModel::audioCodecChoices().size(), 5);
    QCOMPARE(PresetManagerModel::sampleRateLabels(), (QStringList{"44.1 kHz", "48 kHz", "96 kHz"}));
    QCOMPARE(PresetManagerModel::bitDepthLabels(), (QStringList{"16-bit", "24-bit"}));
    QCOMPARE(PresetManagerModel::levelModeLabels(),
             (QStringList{"None", "dBFS Normalization", "Integrated LUFS"}));
    QCOMPARE(PresetManagerModel::lufsPresetLabels(),
             (QStringList{"EBU R128 (-23)", "ATSC (-24)", "Talkover Bed (-33)", "Spotify (-14)",
                          "YouTube (-13)", "Custom"}));
    QCOMPARE(PresetManagerModel::lufsPresetRow(ConversionEngine::AudioLevelPreset::custom(-17)), 5);
    QCOMPARE(PresetManagerModel::lufsPresetRow(ConversionEngine::AudioLevelPreset::atsc()), 1);
}

void PresetManagerModelTest::valueTextsIgnoreTheCLocale()
{
    const char* previous = std::setlocale(LC_ALL, nullptr);
    const QByteArray saved = previous ? QByteArray(previous) : QByteArray("C");
    const bool german = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    QLocale::setDefault(QLocale(QLocale::German));
    QCOMPARE(PresetManagerModel::dbfsText(-1.3f), QStringLiteral("-1.3 dBFS"));
    QCOMPARE(PresetManagerModel::dbfsText(-0.2f), QStringLiteral("-0.2 dBFS"));
    QCOMPARE(PresetManagerModel::lufsText(-23.0f), QStringLiteral("-23 LUFS"));
    std::setlocale(LC_ALL, saved.constData());
    QLocale::setDefault(QLocale::c());
    if (!german)
        qInfo("no German locale on this machine: only the Qt default locale was changed");
}

QTEST_GUILESS_MAIN(PresetManagerModelTest)
#include "tst_presetmanagermodel.moc"
