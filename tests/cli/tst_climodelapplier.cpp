// SPDX-License-Identifier: GPL-3.0-or-later
// The settings of a command line replayed on the window's model: each lands where its panel
// control puts it, with the rules the model keeps for that control, and in the order given.
#include "app/metadata/MetadataEditorModel.h"
#include "app/presets/PresetStore.h"
#include "app/window/ContentViewModel.h"
#include "app/window/OutputDirectoryModel.h"
#include "cli/CliModelApplier.h"
#include "cli/CliOptionParser.h"
#include "cli/UsageError.h"
#include "platform/foundation/UserDefaults.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Ondrilet;
using ConversionEngine::AudioLevelPreset;
using ConversionEngine::AudioLevelTarget;
using ConversionEngine::InterlacingHandlingMode;
using ConversionEngine::VideoFrameRate;

class TestCliModelApplier : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;

    // A model as the window opens it, with `arguments` (and a file) replayed on it.
    void applyTo(ContentViewModel& model, QStringList arguments)
    {
        model.handleFirstAppearance();
        arguments.append(QStringLiteral("a.wav"));
        const CliRequest request = CliOptionParser::parse(arguments, m_directory.path());
        CliModelApplier::check(request.settings);
        for (const CliSetting& setting : request.settings)
            CliModelApplier::apply(model, setting);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_directory.isValid());
        Platform::UserDefaults::setStandardFilePath(m_directory.filePath(QStringLiteral("prefs")));
    }

    // The preferences are written out now, while their folder exists: written at exit, after
    // the folder has gone, they would make it again.
    void cleanupTestCase() { Platform::UserDefaults::standard().synchronize(); }

    void videoSettings()
    {
        PresetStore store;
        ContentViewModel model(&store);
        applyTo(model, {"--format", "mp4", "--video-codec", "prores4444", "--resolution", "4k",
                        "--frame-rate", "59.94", "--crf", "31", "--interlacing", "keep"});
        QVERIFY(model.selectedOutputFormat() == OutputFormat::video(VideoFormat::mp4));
        QCOMPARE(model.selectedVideoCodec(), VideoCodec::prores4444);
        QCOMPARE(model.selectedResolution(), std::optional(VideoResolution::p2160));
        QCOMPARE(model.selectedFrameRate(), VideoFrameRate::fps5994);
        QVERIFY(model.qualityMode() == QualityMode::constant(31));
        QCOMPARE(model.selectedInterlacingHandlingMode(), InterlacingHandlingMode::keepOriginal);
        // The first preset's PCM is not allowed in MP4: the format change made it AAC.
        QCOMPARE(model.selectedAudioCodec(), AudioCodec::aac);

        applyTo(model, {"--resolution", "source"});
        QCOMPARE(model.selectedResolution(), std::nullopt);
    }

    void audioSettingsInOrder()
    {
        PresetStore store;
        ContentViewModel model(&store);
        applyTo(model, {"--audio-codec", "alac", "--format", "wav", "--sample-rate", "96",
                        "--bit-depth", "16", "--audio-bitrate", "320"});
        QCOMPARE(model.selectedAudioCodec(), AudioCodec::pcm);
        QCOMPARE(model.selectedSampleRate(), SampleRate::rate96000);
        QCOMPARE(model.selectedBitDepth(), BitDepth::depth16);
        QCOMPARE(model.selectedAudioBitrate(), AudioBitrate::kbps320);

        applyTo(model, {"--format", "m4a", "--audio-codec", "he-aac-v2"});
        QCOMPARE(model.selectedAudioCodec(), AudioCodec::heAacV2);
        // Chosen after the format: nothing checks it.
        applyTo(model, {"--format", "m4a", "--audio-codec", "pcm"});
        QCOMPARE(model.selectedAudioCodec(), AudioCodec::pcm);
    }

    void levelProcessing()
    {
        PresetStore store;
        ContentViewModel model(&store);
        applyTo(model, {"--peak-target", "-3.5"});
        QCOMPARE(model.levelMode(), LevelMode::dbfs);
        QCOMPARE(model.dbfsTarget(), -3.5f);
        QVERIFY(model.selectedLevelProcessing() == AudioLevelTarget::dbFS(-3.5f));

        applyTo(model, {"--loudness-target", "-33"});
        QCOMPARE(model.levelMode(), LevelMode::lufs);
        QVERIFY(model.selectedLevelProcessing() == AudioLevelTarget::integratedLUFS(-33.0f));
        QVERIFY(model.selectedLUFSPreset() == AudioLevelPreset::talkoverBed());

        applyTo(model, {"--loudness-target", "-30"});
        QVERIFY(model.selectedLUFSPreset() == AudioLevelPreset::custom(-30.0f));

        applyTo(model, {"--no-level", "--lufs-preset", "youtube"});
        QCOMPARE(model.levelMode(), LevelMode::lufs);
        QCOMPARE(model.lufsTarget(), -13.0f);
        QVERIFY(model.selectedLevelProcessing() == AudioLevelTarget::integratedLUFS(-13.0f));

        applyTo(model, {"--no-level"});
        QCOMPARE(model.levelMode(), LevelMode::none);
        QVERIFY(model.selectedLevelProcessing() == AudioLevelTarget::none());
    }

    void fileOptionsAndDirectories()
    {
        PresetStore store;
        ContentViewModel model(&store);
        applyTo(model,
                {"--no-settings-in-name", "--no-overwrite", "--no-subfolders", "--beside-source"});
        QCOMPARE(model.includeSettingsInFilename(), false);
        QCOMPARE(model.overwriteExisting(), false);
        QCOMPARE(model.createSubfolders(), false);
        QCOMPARE(model.useSourceDirectory(), true);

        QVERIFY(QDir(m_directory.path()).mkpath(QStringLiteral("out")));
        applyTo(model,
                {"--settings-in-name", "--overwrite", "--subfolders", "--output-dir", "out"});
        QCOMPARE(model.includeSettingsInFilename(), true);
        QCOMPARE(model.overwriteExisting(), true);
        QCOMPARE(model.createSubfolders(), true);
        QCOMPARE(model.useSourceDirectory(), false);
        QCOMPARE(model.outputDirectory(), m_directory.filePath(QStringLiteral("out")));

        applyTo(model, {"--output-dir", "out", "--beside-source"});
        QCOMPARE(model.useSourceDirectory(), true);
    }

    void missingOutputDirectoryIsRefused()
    {
        const CliRequest request = CliOptionParser::parse(
            {QStringLiteral("--output-dir"), QStringLiteral("nowhere"), QStringLiteral("a.wav")},
            m_directory.path());
        try {
            CliModelApplier::check(request.settings);
            QFAIL("accepted a missing directory");
        } catch (const UsageError& error) {
            QCOMPARE(error.message(), QStringLiteral("--output-dir: '%1' is not a directory")
                                          .arg(m_directory.filePath(QStringLiteral("nowhere"))));
        }
    }

    void metadataOpensTheEditor()
    {
        PresetStore store;
        ContentViewModel model(&store);
        applyTo(model, {});
        QCOMPARE(model.metadataEditor()->isMetadataEditorExpanded(), false);

        applyTo(model, {"--title",
                        "T",
                        "--artist",
                        "A",
                        "--album",
                        "L",
                        "--genre",
                        "G",
                        "--year",
                        "1999a",
                        "--composer",
                        "C",
                        "--album-artist",
                        "B",
                        "--comments",
                        "N",
                        "--keep-original-date",
                        "--date",
                        "2021-03-04T05:06:07Z",
                        "--date-in-name"});
        const MetadataEditorModel& editor = *model.metadataEditor();
        QCOMPARE(editor.isMetadataEditorExpanded(), true);
        QCOMPARE(editor.metadataTitle(), QStringLiteral("T"));
        QCOMPARE(editor.metadataArtist(), QStringLiteral("A"));
        QCOMPARE(editor.metadataAlbum(), QStringLiteral("L"));
        QCOMPARE(editor.metadataGenre(), QStringLiteral("G"));
        QCOMPARE(editor.metadataYear(), QStringLiteral("1999a"));
        QCOMPARE(editor.metadataComposer(), QStringLiteral("C"));
        QCOMPARE(editor.metadataAlbumArtist(), QStringLiteral("B"));
        QCOMPARE(editor.metadataComments(), QStringLiteral("N"));
        QCOMPARE(editor.metadataKeepOriginalDate(), true);
        QCOMPARE(editor.metadataUseCustomDate(), true);
        QCOMPARE(editor.metadataCustomCreationDate(),
                 QDateTime(QDate(2021, 3, 4), QTime(5, 6, 7), Qt::UTC));
        QCOMPARE(editor.metadataWriteDateToFilename(), true);
    }
};

QTEST_GUILESS_MAIN(TestCliModelApplier)
#include "tst_climodelapplier.moc"
