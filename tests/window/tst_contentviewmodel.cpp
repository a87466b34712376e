// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/metadata/MetadataEditorModel.h"
#include "app/presets/PresetStore.h"
#include "app/window/ContentViewModel.h"
#include "app/window/ConversionControls.h"
#include "app/window/FileListModel.h"
#include "app/window/OutputDirectoryModel.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/foundation/UserDefaults.h"

#include <QCoreApplication>
#include <QLocale>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <memory>

using namespace Ondrilet;
using ConversionEngine::AudioLevelPreset;
using ConversionEngine::AudioLevelTarget;
using ConversionEngine::InterlacingHandlingMode;
using ConversionEngine::VideoFrameRate;
using Platform::Console;
using Platform::NotificationCenter;

namespace {

const QDateTime fixedNow(QDate(2021, 3, 4), QTime(15, 5), Qt::UTC);

void drain()
{
    for (int i = 0; i < 10; ++i)
        QCoreApplication::processEvents();
}

AnyPreset presetNamed(const PresetStore& store, const QString& name)
{
    const std::optional<AnyPreset> preset = store.presetNamed(name);
    if (!preset)
        qFatal("no preset %s", qPrintable(name));
    return *preset;
}

// Paths the model is given; nothing needs to exist for the list rules.
const QString clipA = QStringLiteral("/media/in/a.wav");
const QString clipB = QStringLiteral("/media/in/b.mov");
const QString notes = QStringLiteral("/media/in/notes.txt");

} // namespace

class TestContentViewModel : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_home;
    std::unique_ptr<PresetStore> m_store;
    std::unique_ptr<ContentViewModel> m_model;
    QStringList m_readPaths;

    ContentViewModel& model() { return *m_model; }

private slots:
    void initTestCase()
    {
        QVERIFY(m_home.isValid());
        qputenv("HOME", m_home.path().toUtf8());
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        Platform::UserDefaults::setStandardFilePath(m_home.filePath("defaults.conf"));
    }

    void init()
    {
        m_store = std::make_unique<PresetStore>();
        m_model = std::make_unique<ContentViewModel>(m_store.get());
        m_model->setClock([] { return fixedNow; });
        m_readPaths.clear();
        m_model->metadataEditor()->setMetadataLoader(
            [this](QString path) -> QCoro::Task<QVariantMap> {
                m_readPaths.append(path);
                co_return QVariantMap{{QStringLiteral("title"), QStringLiteral("Tagged")}};
            });
    }

    void cleanup()
    {
        m_model.reset();
        m_store.reset();
        drain();
    }

    void startsWithItsInitialValues()
    {
        ContentViewModel& m = model();
        QCOMPARE(m.listedFiles(), QStringList());
        QCOMPARE(m.selectedOutputFormat(), OutputFormat::audio(AudioFormat::wav));
        QCOMPARE(m.selectedVideoCodec(), VideoCodec::h264);
        QCOMPARE(m.selectedResolution(), std::optional(VideoResolution::p1080));
        QCOMPARE(m.selectedFrameRate(), VideoFrameRate::source);
        QVERIFY(m.qualityMode() == QualityMode::constant(23));
        QCOMPARE(m.selectedExportQuality(), ExportQualityPreset::highest);
        QCOMPARE(m.customCRF(), 23.0);
        QCOMPARE(m.useCustomCRF(), false);
        QCOMPARE(m.audioHandlingMode(), AudioHandlingMode::reencode);
        QCOMPARE(m.selectedAudioCodec(), AudioCodec::pcm);
        QCOMPARE(m.selectedSampleRate(), SampleRate::rate48000);
        QCOMPARE(m.selectedBitDepth(), BitDepth::depth24);
        QCOMPARE(m.selectedAudioBitrate(), AudioBitrate::kbps256);
        QVERIFY(!m.selectedAnyPreset().has_value());
        QCOMPARE(m.levelMode(), LevelMode::none);
        QVERIFY(m.selectedLevelProcessing() == AudioLevelTarget::none());
        QCOMPARE(m.dbfsTarget(), -0.2f);
        QCOMPARE(m.lufsTarget(), -23.0f);
        QVERIFY(m.selectedLUFSPreset() == AudioLevelPreset::ebur128());
        QCOMPARE(m.selectedInterlacingHandlingMode(), InterlacingHandlingMode::makeProgressive);
        QCOMPARE(m.selectedQualityType(), QualityModeType::constant);
        QCOMPARE(m.targetBitrate(), 5000000);
        QCOMPARE(m.minBitrate(), 1000000);
        QCOMPARE(m.maxBitrate(), 10000000);
        QCOMPARE(m.includeSettingsInFilename(), true);
        QCOMPARE(m.overwriteExisting(), true);
        QCOMPARE(m.createSubfolders(), true);
        QCOMPARE(m.useSourceDirectory(), false);
        QCOMPARE(m.outputDirectory(), m_home.path() + "/Downloads");
        QCOMPARE(m.outputDirectoryModel()->defaultOutputDirectoryPath(),
                 m_home.path() + "/Downloads");
        QCOMPARE(m.outputDirectoryModel()->securityScopedOutputURL(), std::nullopt);
        QCOMPARE(m.outputDirectoryModel()->showingDirectoryPicker(), false);
        QCOMPARE(m.showOverwriteWarning(), false);
        QVERIFY(!m.pendingConversionSettings().has_value());
        QCOMPARE(m.isDragOver(), false);
        QCOMPARE(m.showingAlert(), false);
        QCOMPARE(m.alertMessage(), QString());
        QCOMPARE(m.showingFileAlert(), false);

        const MetadataEditorModel& metadata = *m.metadataEditor();
        QCOMPARE(metadata.isMetadataEditorExpanded(), false);
        QCOMPARE(metadata.metadataKeepOriginalDate(), false);
        QCOMPARE(metadata.metadataUseCustomDate(), false);
        QCOMPARE(metadata.metadataWriteDateToFilename(), false);
        QVERIFY(qAbs(metadata.metadataCustomCreationDate().secsTo(QDateTime::currentDateTime())) <
                60);
        for (const QString& field :
             {metadata.metadataTitle(), metadata.metadataArtist(), metadata.metadataAlbum(),
              metadata.metadataGenre(), metadata.metadataYear(), metadata.metadataComposer(),
              metadata.metadataAlbumArtist(), metadata.metadataComments(),
              metadata.detectedFileFormat()})
            QCOMPARE(field, QString());
        QCOMPARE(metadata.currentFileMetadata(), QVariantMap());
    }

    void firstAppearanceAppliesTheFirstPreset()
    {
        Console::Recorder recorder;
        model().handleFirstAppearance();
        ContentViewModel& m = model();
        QCOMPARE(m.selectedAnyPreset()->name(), QStringLiteral("H.264 Broadcast 25fps"));
        QCOMPARE(recorder.lines(),
                 (QStringList{"🎯 Applying video preset: H.264 Broadcast 25fps",
                              "   Preset resolution: nil", "   Before: selectedResolution = 1080p",
                              "   After: selectedResolution = nil"}));
        QCOMPARE(m.selectedOutputFormat(), OutputFormat::video(VideoFormat::mov));
        QCOMPARE(m.selectedVideoCodec(), VideoCodec::h264);
        QCOMPARE(m.selectedResolution(), std::nullopt);
        QCOMPARE(m.selectedFrameRate(), VideoFrameRate::fps25);
        QVERIFY(m.qualityMode() == QualityMode::constant(20));
        QCOMPARE(m.customCRF(), 20.0);
        QCOMPARE(m.useCustomCRF(), false);
        QCOMPARE(m.selectedAudioCodec(), AudioCodec::pcm);
        QCOMPARE(m.selectedAudioBitrate(), AudioBitrate::kbps256);
        QCOMPARE(m.selectedSampleRate(), SampleRate::rate48000);
        QCOMPARE(m.selectedBitDepth(), BitDepth::depth24);
        QCOMPARE(m.audioHandlingMode(), AudioHandlingMode::reencode);
        QCOMPARE(m.selectedInterlacingHandlingMode(), InterlacingHandlingMode::keepOriginal);
        QCOMPARE(m.levelMode(), LevelMode::lufs);
        QCOMPARE(m.lufsTarget(), -23.0f);
        QVERIFY(m.selectedLevelProcessing() == AudioLevelTarget::integratedLUFS(-23.0f));
        QVERIFY(m.selectedLUFSPreset() == AudioLevelPreset::ebur128());
        QCOMPARE(m.outputPreview(),
                 QStringLiteral("Video/MOV/example (H.264_25fps_CRF20_PCM_48kHz_24bit_LUFS-23).mov"
                                "\n📅 Creation Date: Mar 4, 2021, 3:05 PM (current)"));

        // Only once.
        m.setSelectedFrameRate(VideoFrameRate::fps60);
        m.handleFirstAppearance();
        QCOMPARE(m.selectedFrameRate(), VideoFrameRate::fps60);
    }

    void anEmptyStoreLeavesTheInitialSettings()
    {
        m_store->setAllPresets({});
        model().handleFirstAppearance();
        QVERIFY(!model().selectedAnyPreset().has_value());
        QCOMPARE(model().selectedOutputFormat(), OutputFormat::audio(AudioFormat::wav));
        QCOMPARE(model().outputPreview(),
                 QStringLiteral("Audio/WAV/example (PCM_48kHz_24bit).wav\n📅 Creation Date: Mar "
                                "4, 2021, 3:05 PM (current)"));
    }

    void anAudioPresetPrintsNothingAndKeepsTheVideoFields()
    {
        ContentViewModel& m = model();
        m.setSelectedAudioBitrate(AudioBitrate::kbps128);
        m.setSelectedVideoCodec(VideoCodec::prores4444);
        m.setSelectedFrameRate(VideoFrameRate::fps50);
        m.setAudioHandlingMode(AudioHandlingMode::passthrough);
        m.setLevelMode(LevelMode::dbfs);
        m.setDbfsTarget(-3.0f);
        Console::Recorder recorder;
        m.setSelectedAnyPreset(presetNamed(*m_store, "WAV 24/48 (PCM)"));
        QCOMPARE(recorder.lines(), QStringList());
        QCOMPARE(m.selectedOutputFormat(), OutputFormat::audio(AudioFormat::wav));
        QCOMPARE(m.selectedAudioCodec(), AudioCodec::pcm);
        // No bit rate in the preset: 256, not the former 128.
        QCOMPARE(m.selectedAudioBitrate(), AudioBitrate::kbps256);
        QCOMPARE(m.selectedBitDepth(), BitDepth::depth24);
        QCOMPARE(m.audioHandlingMode(), AudioHandlingMode::reencode);
        QCOMPARE(m.levelMode(), LevelMode::none);
        QVERIFY(m.selectedLevelProcessing() == AudioLevelTarget::none());
        QCOMPARE(m.dbfsTarget(), -3.0f);
        QCOMPARE(m.selectedVideoCodec(), VideoCodec::prores4444);
        QCOMPARE(m.selectedFrameRate(), VideoFrameRate::fps50);

        // No bit depth in the record: 16 bits, whatever the name says.
        m.setSelectedAnyPreset(presetNamed(*m_store, "ALAC 24/96"));
        QCOMPARE(m.selectedOutputFormat(), OutputFormat::audio(AudioFormat::m4a));
        QCOMPARE(m.selectedAudioCodec(), AudioCodec::alac);
        QCOMPARE(m.selectedBitDepth(), BitDepth::depth16);
        QCOMPARE(m.selectedSampleRate(), SampleRate::rate96000);
    }

    void presetsLeaveEverythingTheyDoNotName()
    {
        ContentViewModel& m = model();
        m.fileList()->setListedFiles({clipA});
        m.setSelectedExportQuality(ExportQualityPreset::low);
        m.moveTargetBitrate(3000000);
        m.setIncludeSettingsInFilename(false);
        m.setOverwriteExisting(false);
        m.setCreateSubfolders(false);
        m.setUseSourceDirectory(true);
        m.metadataEditor()->setMetadataTitle("Kept");
        m.metadataEditor()->setMetadataKeepOriginalDate(true);
        const QualityMode twoPass = m.qualityMode();

        VideoPreset video = *m_store->allPresets().front().videoPreset();
        video.keepOriginalDate = false;
        video.writeDateToFilename = true;
        m.setSelectedAnyPreset(AnyPreset::video(video));
        QCOMPARE(m.listedFiles(), QStringList{clipA});
        QCOMPARE(m.selectedExportQuality(), ExportQualityPreset::low);
        QCOMPARE(m.selectedQualityType(), QualityModeType::constant);
        QCOMPARE(m.targetBitrate(), 3000000);
        QCOMPARE(m.minBitrate(), 1000000);
        QCOMPARE(m.maxBitrate(), 10000000);
        QCOMPARE(m.includeSettingsInFilename(), false);
        QCOMPARE(m.overwriteExisting(), false);
        QCOMPARE(m.createSubfolders(), false);
        QCOMPARE(m.useSourceDirectory(), true);
        QCOMPARE(m.outputDirectory(), m_home.path() + "/Downloads");
        QCOMPARE(m.metadataEditor()->metadataTitle(), QStringLiteral("Kept"));
        // The preset's two date switches are not applied.
        QCOMPARE(m.metadataEditor()->metadataKeepOriginalDate(), true);
        QCOMPARE(m.metadataEditor()->metadataWriteDateToFilename(), false);
        // The preset's CRF replaces the two-pass mode the slider had set.
        QVERIFY(twoPass.kind == QualityMode::Kind::twoPassVBR);
        QVERIFY(m.qualityMode() == QualityMode::constant(20));
    }

    void aPresetWithMp4AndPcmIsCorrectedToAac()
    {
        VideoPreset handMade;
        handMade.name = "By hand";
        handMade.outputFormat = OutputFormat::video(VideoFormat::mp4);
        handMade.audioCodec = AudioCodec::pcm;
        handMade.resolution = VideoResolution::p720;
        handMade.audioLevelProcessing = AudioLevelTarget::dbFS(-1.5f);
        Console::Recorder recorder;
        model().setSelectedAnyPreset(AnyPreset::video(handMade));
        QCOMPARE(model().selectedAudioCodec(), AudioCodec::aac);
        QCOMPARE(model().levelMode(), LevelMode::dbfs);
        QCOMPARE(model().dbfsTarget(), -1.5f);
        QVERIFY(model().selectedLevelProcessing() == AudioLevelTarget::dbFS(-1.5f));
        QCOMPARE(recorder.lines().mid(1),
                 (QStringList{"   Preset resolution: 720p", "   Before: selectedResolution = 1080p",
                              "   After: selectedResolution = 720p"}));
    }

    void theSamePresetIsNotAppliedTwiceAndStoreEditsDoNotReachTheWindow()
    {
        ContentViewModel& m = model();
        const AnyPreset youtube = presetNamed(*m_store, "YouTube 1080p");
        m.setSelectedAnyPreset(youtube);
        QCOMPARE(m.selectedAudioBitrate(), AudioBitrate::kbps192);
        m.setSelectedAudioBitrate(AudioBitrate::kbps64);
        m.setSelectedAnyPreset(youtube);
        QCOMPARE(m.selectedAudioBitrate(), AudioBitrate::kbps64);

        VideoPreset edited = *youtube.videoPreset();
        edited.audioBitrate = AudioBitrate::kbps320;
        m_store->updatePreset(AnyPreset::video(edited));
        QCOMPARE(m.selectedAudioBitrate(), AudioBitrate::kbps64);
        QVERIFY(*m.selectedAnyPreset() == youtube);
        m_store->deletePreset(youtube.id());
        QVERIFY(*m.selectedAnyPreset() == youtube);

        // Back to no selection: nothing is applied.
        m.setSelectedAnyPreset(std::nullopt);
        QCOMPARE(m.selectedAudioBitrate(), AudioBitrate::kbps64);
    }

    void thePresetListTheWindowShows()
    {
        PresetStore& store = *model().presetStore();
        VideoPreset named;
        named.name = "YouTube 4K";
        named.videoCodec = VideoCodec::h265;
        named.audioCodec = AudioCodec::pcm;
        store.addPreset(AnyPreset::video(named));
        QCOMPARE(store.allPresets()[5].name(), QStringLiteral("YouTube 4K"));
        QCOMPARE(store.allPresets()[5].presetDescription(), QStringLiteral("MP4, 4K, AAC"));
        AudioPreset audio;
        audio.name = "Mine";
        store.addPreset(AnyPreset::audio(audio));
        QCOMPARE(store.allPresets().size(), 12);
        QCOMPARE(store.allPresets()[11].name(), QStringLiteral("Mine"));

        const QList<AnyPreset> before = store.allPresets();
        VideoPreset stranger;
        store.updatePreset(AnyPreset::video(stranger));
        QVERIFY(store.allPresets() == before);

        for (const AnyPreset& preset : before)
            store.deletePreset(preset.id());
        QVERIFY(store.allPresets().isEmpty());
        store.addPreset(AnyPreset::video(named));
        QCOMPARE(store.allPresets().size(), 1);
        store.loadFactoryPresets();
        QCOMPARE(store.allPresets().size(), 10);
        for (const AnyPreset& preset : store.allPresets())
            for (const AnyPreset& old : before)
                QVERIFY(preset.id() != old.id());
    }

    // ---- File list

    void thePanelKeepsDoublesAndReadsTheFirstSupportedFile()
    {
        ContentViewModel& m = model();
        m.addFiles({clipA});
        m.addFiles({clipA});
        QCOMPARE(m.listedFiles(), (QStringList{clipA, clipA}));
        m.addFiles({notes, clipB, clipA});
        QCOMPARE(m.listedFiles(), (QStringList{clipA, clipA, clipB, clipA}));
        QTRY_COMPARE(m_readPaths, (QStringList{clipA, clipA, clipB}));
        QCOMPARE(m.fileAlertTitle(), QStringLiteral("Unsupported File Type"));
        QCOMPARE(m.fileAlertText(),
                 QStringLiteral("The file 'notes.txt' is not a supported media file."));
        QCOMPARE(m.metadataEditor()->metadataTitle(), QStringLiteral("Tagged"));
        QCOMPARE(m.metadataEditor()->detectedFileFormat(), QStringLiteral("QuickTime Video"));
    }

    void thePanelWithOnlyRefusedFilesChangesNothingButAlerts()
    {
        ContentViewModel& m = model();
        m.addFiles({clipA});
        QTRY_COMPARE(m.metadataEditor()->metadataTitle(), QStringLiteral("Tagged"));
        m.metadataEditor()->setMetadataArtist("Typed");
        m.addFiles({notes, "/media/in/cover.JPG", "/media/in/folder"});
        drain();
        QCOMPARE(m.listedFiles(), QStringList{clipA});
        QCOMPARE(m_readPaths, QStringList{clipA});
        QCOMPARE(m.metadataEditor()->metadataArtist(), QStringLiteral("Typed"));
        QVERIFY(m.showingFileAlert());
        QCOMPARE(m.fileAlertTitle(), QStringLiteral("Unsupported File Types"));
        QCOMPARE(m.fileAlertText(),
                 QStringLiteral("The following files are not supported media files and were "
                                "skipped:\n\nnotes.txt, cover.JPG, folder"));
        m.dismissFileAlert();
        QVERIFY(!m.showingFileAlert());
    }

    void theFileManagerDropsDoublesSilently()
    {
        ContentViewModel& m = model();
        m.addFromFinder({clipA});
        m.addFromFinder({clipA});
        QCOMPARE(m.listedFiles(), QStringList{clipA});
        m.addFromFinder({clipA, notes});
        QCOMPARE(m.listedFiles(), QStringList{clipA});
        QCOMPARE(m.fileAlertText(),
                 QStringLiteral("The file 'notes.txt' is not a supported media file."));
        m.dismissFileAlert();
        m.addFromFinder({clipA});
        drain();
        QVERIFY(!m.showingFileAlert());
        QCOMPARE(m_readPaths, QStringList{clipA});
    }

    void removingOneOfTwoEqualRowsRemovesBoth()
    {
        ContentViewModel& m = model();
        m.addFiles({clipA, clipB, clipA});
        QTRY_COMPARE(m.metadataEditor()->metadataTitle(), QStringLiteral("Tagged"));
        m.removeFile(clipA);
        QCOMPARE(m.listedFiles(), QStringList{clipB});
        // The metadata fields stay, also after clearing.
        QCOMPARE(m.metadataEditor()->metadataTitle(), QStringLiteral("Tagged"));
        m.clearFiles();
        QCOMPARE(m.listedFiles(), QStringList());
        QCOMPARE(m.metadataEditor()->metadataTitle(), QStringLiteral("Tagged"));
    }

    void movingRows()
    {
        ContentViewModel& m = model();
        const QStringList four{"/m/0.wav", "/m/1.wav", "/m/2.wav", "/m/3.wav"};
        m.fileList()->setListedFiles(four);
        Console::Recorder recorder;
        QVERIFY(m.moveFile(0, 3));
        QCOMPARE(m.listedFiles(), (QStringList{"/m/1.wav", "/m/2.wav", "/m/3.wav", "/m/0.wav"}));
        QCOMPARE(recorder.lines(), QStringList{"✅ Moved file from index 0 to 3"});
        QVERIFY(m.moveFile(3, 1));
        QCOMPARE(m.listedFiles(), (QStringList{"/m/1.wav", "/m/0.wav", "/m/2.wav", "/m/3.wav"}));
        for (const auto& [from, to] :
             {std::pair<qint64, qint64>{2, 2}, {-1, 0}, {0, 4}, {4, 0}, {0, -1}})
            QVERIFY(!m.moveFile(from, to));
        QCOMPARE(recorder.lines().size(), 2);

        // Row drops: the dragged row offers its index as text.
        QVERIFY(m.handleRowDrop("2", 2));
        QVERIFY(m.handleRowDrop("x", 0));
        drain();
        QCOMPARE(recorder.lines().size(), 2);
        QVERIFY(m.handleRowDrop("3", 0));
        QCOMPARE(m.listedFiles().front(), QStringLiteral("/m/1.wav"));
        drain();
        QCOMPARE(m.listedFiles(), (QStringList{"/m/3.wav", "/m/1.wav", "/m/0.wav", "/m/2.wav"}));
        QCOMPARE(recorder.lines().last(), QStringLiteral("✅ Moved file from index 3 to 0"));
    }

    void dropsArriveOneByOne()
    {
        ContentViewModel& m = model();
        m.setIsDragOver(true);
        QVERIFY(m.handleDrop({QUrl::fromLocalFile(clipA), QUrl::fromLocalFile(notes),
                              QUrl("https://example.org/c.wav"), QUrl::fromLocalFile(clipA),
                              QUrl::fromLocalFile("/media/in/d.jpg")}));
        QCOMPARE(m.isDragOver(), false);
        QCOMPARE(m.listedFiles(), QStringList());
        drain();
        QCOMPARE(m.listedFiles(), (QStringList{clipA, clipA}));
        QTRY_COMPARE(m_readPaths, (QStringList{clipA, clipA}));
        QCOMPARE(m.fileAlerts().size(), 2);
        QCOMPARE(m.fileAlertTitle(), QStringLiteral("Unsupported File Type"));
        QCOMPARE(m.fileAlertText(),
                 QStringLiteral("The file 'notes.txt' is not a supported media file. Please "
                                "select audio or video files only."));
        m.dismissFileAlert();
        QCOMPARE(m.fileAlertText(),
                 QStringLiteral("The file 'd.jpg' is not a supported media file. Please select "
                                "audio or video files only."));
    }

    // ---- Settings rules through the model

    void theCodecCheckRunsOnFormatChanges()
    {
        ContentViewModel& m = model();
        m.setSelectedOutputFormat(OutputFormat::video(VideoFormat::mp4));
        QCOMPARE(m.selectedAudioCodec(), AudioCodec::aac);

        m.setSelectedOutputFormat(OutputFormat::video(VideoFormat::mov));
        m.setSelectedAudioCodec(AudioCodec::pcm);
        m.setSelectedOutputFormat(OutputFormat::video(VideoFormat::mp4));
        QCOMPARE(m.selectedAudioCodec(), AudioCodec::aac);

        m.setSelectedOutputFormat(OutputFormat::audio(AudioFormat::wav));
        QCOMPARE(m.selectedAudioCodec(), AudioCodec::pcm);

        // A codec chosen by hand is not checked until the format changes.
        m.setSelectedAudioCodec(AudioCodec::alac);
        QCOMPARE(m.selectedAudioCodec(), AudioCodec::alac);
    }

    void aBitRateOutsideTheCodecsListStays()
    {
        ContentViewModel& m = model();
        m.setSelectedOutputFormat(OutputFormat::audio(AudioFormat::m4a));
        m.setSelectedAudioBitrate(AudioBitrate::kbps320);
        m.setSelectedAudioCodec(AudioCodec::heAac);
        QCOMPARE(m.selectedAudioBitrate(), AudioBitrate::kbps320);
        m.setCreateSubfolders(false);
        QVERIFY(m.outputPreview().startsWith("example (HE-AAC_320k_48kHz).m4a\n"));
    }

    void levelControls()
    {
        ContentViewModel& m = model();
        m.setLevelMode(LevelMode::lufs);
        QVERIFY(m.selectedLevelProcessing() == AudioLevelTarget::integratedLUFS(-23.0f));
        m.setLufsTarget(-33.0f);
        QVERIFY(m.selectedLUFSPreset() == AudioLevelPreset::talkoverBed());
        QCOMPARE(ConversionControls::lufsPresetChoiceLabel(m.selectedLUFSPreset()),
                 QStringLiteral("Talkover Bed (-33 LUFS)"));
        m.setLufsTarget(-30.0f);
        QVERIFY(m.selectedLUFSPreset() == AudioLevelPreset::custom(-30.0f));
        QCOMPARE(ConversionControls::lufsPresetChoiceLabel(m.selectedLUFSPreset()),
                 QStringLiteral("Custom"));
        QVERIFY(m.selectedLevelProcessing() == AudioLevelTarget::integratedLUFS(-30.0f));

        m.setSelectedLUFSPreset(AudioLevelPreset::spotify());
        QCOMPARE(m.lufsTarget(), -14.0f);
        QVERIFY(m.selectedLevelProcessing() == AudioLevelTarget::integratedLUFS(-14.0f));
        m.setSelectedLUFSPreset(AudioLevelPreset::custom(-14.0f));
        QCOMPARE(m.lufsTarget(), -14.0f);

        m.setLevelMode(LevelMode::dbfs);
        QVERIFY(m.selectedLevelProcessing() == AudioLevelTarget::dbFS(-0.2f));
        m.setDbfsTarget(-6.5f);
        QVERIFY(m.selectedLevelProcessing() == AudioLevelTarget::dbFS(-6.5f));
        m.setLevelMode(LevelMode::none);
        QVERIFY(m.selectedLevelProcessing() == AudioLevelTarget::none());
        QCOMPARE(m.dbfsTarget(), -6.5f);
    }

    void qualityControls()
    {
        ContentViewModel& m = model();
        m.setCrfFromSlider(17.9);
        QVERIFY(m.qualityMode() == QualityMode::constant(17));
        QCOMPARE(m.crfDescription(),
                 QStringLiteral("CRF 17: Very high quality; large file; near visually lossless"));
        m.setCrfFromSlider(23.0);
        QCOMPARE(m.crfDescription(), QStringLiteral("CRF 23: Visually transparent; "
                                                    "indistinguishable from source to most "
                                                    "viewers"));

        m.moveMinBitrate(9500000);
        QCOMPARE(m.minBitrate(), 9500000);
        QCOMPARE(m.maxBitrate(), 10500000);
        QVERIFY(m.qualityMode() == QualityMode::variableBitrate(9500000, 10500000));
        m.moveMaxBitrate(2000000);
        QCOMPARE(m.minBitrate(), 1000000);
        QVERIFY(m.qualityMode() == QualityMode::variableBitrate(1000000, 2000000));
        m.moveTargetBitrate(6000000);
        QCOMPARE(m.maxBitrate(), 12000000);
        QVERIFY(m.qualityMode() == QualityMode::twoPassVBR(6000000, 1000000, 12000000));
        m.moveAverageBitrate(8000000);
        QVERIFY(m.qualityMode() == QualityMode::averageBitrate(8000000));
        m.setSelectedOutputFormat(OutputFormat::video(VideoFormat::mp4));
        m.setCreateSubfolders(false);
        QVERIFY(m.outputPreview().startsWith("example (H.264_1080p_ABR8M_AAC_256k_48kHz).mp4"));
    }

    void thePreviewUsesTheFirstFile()
    {
        ContentViewModel& m = model();
        m.fileList()->setListedFiles({"/m/take.one.wav", "/m/other.wav"});
        m.setLevelMode(LevelMode::dbfs);
        m.setDbfsTarget(-1.0f);
        QCOMPARE(m.outputPreview(),
                 QStringLiteral("Audio/WAV/take.one (PCM_48kHz_24bit_dBFS-1.0).wav\n📅 Creation "
                                "Date: Mar 4, 2021, 3:05 PM (current)"));
        m.metadataEditor()->setMetadataUseCustomDate(true);
        m.metadataEditor()->setMetadataCustomCreationDate(
            QDateTime(QDate(1999, 12, 31), QTime(23, 59), Qt::UTC));
        QVERIFY(m.outputPreview().endsWith("Dec 31, 1999, 11:59 PM (custom)"));
    }

    void theConvertButton()
    {
        ContentViewModel& m = model();
        QCOMPARE(m.convertButtonTitle(), QStringLiteral("Convert"));
        QCOMPARE(m.convertButtonEnabled(), false);
        QCOMPARE(m.convertButtonHelp(),
                 QStringLiteral("Start converting the selected files using the current preset "
                                "and settings. Files will be saved to the output directory."));
        QSignalSpy spy(&m, &ContentViewModel::convertButtonChanged);
        m.fileList()->setListedFiles({clipA});
        QCOMPARE(spy.size(), 1);
        QCOMPARE(m.convertButtonEnabled(), true);
    }

    void stopPrintsAndAsksTheDriver()
    {
        Console::Recorder recorder;
        model().stopConversion();
        QCOMPARE(recorder.lines(),
                 (QStringList{"⏹️ User requested conversion cancellation",
                              "⏹️ Cancellation requested via MediaConverter"}));
        QCOMPARE(model().mediaConverter()->progressMessage(),
                 QStringLiteral("Conversion cancelled"));
    }

    // ---- Notifications

    void memoryPressureLeavesALine()
    {
        Console::Recorder recorder;
        NotificationCenter::defaultCenter().post("memoryPressureDetected");
        drain();
        QCOMPARE(recorder.lines(), QStringList{"⚠️ Memory pressure detected in ContentView"});
    }

    void filesFromTheFileManagerAreHeardAfterTheFirstAppearance()
    {
        ContentViewModel& m = model();
        NotificationCenter& center = NotificationCenter::defaultCenter();
        center.post("AddFilesFromFinder", nullptr, {{"files", QStringList{clipB}}});
        drain();
        QCOMPARE(m.listedFiles(), QStringList());

        m.handleFirstAppearance({clipA, clipA});
        QCOMPARE(m.listedFiles(), QStringList());
        drain();
        // Handed in before the window existed: added once, through the duplicate filter's road.
        QCOMPARE(m.listedFiles(), (QStringList{clipA, clipA}));

        center.post("AddFilesFromFinder", nullptr, {{"files", QStringList{clipA, clipB}}});
        center.post("AddFilesFromFinder", nullptr, {{"files", QString(clipB)}});
        center.post("AddFilesFromFinder", nullptr, {{"paths", QStringList{clipB}}});
        drain();
        QCOMPARE(m.listedFiles(), (QStringList{clipA, clipA, clipB}));

        // Files of an earlier drop count as listed too.
        m.handleDrop({QUrl::fromLocalFile("/media/in/dropped.wav")});
        drain();
        center.post("AddFilesFromFinder", nullptr,
                    {{"files", QStringList{"/media/in/dropped.wav"}}});
        drain();
        QCOMPARE(m.listedFiles().size(), 4);
    }
};

QTEST_GUILESS_MAIN(TestContentViewModel)
#include "tst_contentviewmodel.moc"
