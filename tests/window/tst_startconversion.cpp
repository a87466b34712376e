// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/metadata/MetadataEditorModel.h"
#include "app/metadata/PendingMetadataStore.h"
#include "app/presets/PresetStore.h"
#include "app/window/ContentViewModel.h"
#include "app/window/OutputDirectoryModel.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/UserDefaults.h"
#include "tests/support/Fixtures.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Ondrilet;
using ConversionEngine::DeinterlacingMethod;
using ConversionEngine::DeinterlacingSettings;
using ConversionEngine::InterlacingHandlingMode;
using Platform::Console;
using Platform::UserDefaults;
using TestSupport::Fixtures;

namespace {

const QDateTime customDate(QDate(1999, 12, 31), QTime(23, 59), Qt::UTC);

void drain()
{
    for (int i = 0; i < 10; ++i)
        QCoreApplication::processEvents();
}

QStringList hiddenEntries(const QString& directory)
{
    return QDir(directory)
        .entryList(QDir::Files | QDir::Hidden | QDir::System)
        .filter(QRegularExpression("^\\."));
}

} // namespace

class TestStartConversion : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;
    QString m_sources;
    QString m_outputs;
    std::unique_ptr<PresetStore> m_store;
    std::unique_ptr<ContentViewModel> m_model;

    ContentViewModel& model() { return *m_model; }

    QString freshDirectory(const QString& name)
    {
        const QString path = m_root.filePath(name);
        QDir(path).removeRecursively();
        if (!QDir().mkpath(path))
            qFatal("cannot make %s", qPrintable(path));
        return path;
    }

    // A 16-bit stereo tone, so that a 24-bit output is told apart from its source.
    QString makeSource(const QString& name)
    {
        const QString path =
            Fixtures::makeTone(m_sources, name, 0.5, 48000, 2, {"-c:a", "pcm_s16le"});
        if (path.isEmpty())
            qFatal("no fixture: %s", qPrintable(Fixtures::lastError()));
        return path;
    }

    // Waits until the driver's status line reads `message`.
    bool runEnds(const QString& message)
    {
        for (int i = 0; i < 600; ++i) {
            if (model().mediaConverter()->enhancedProgressTracker()->statusMessage() == message &&
                !model().mediaConverter()->isConverting())
                return true;
            QTest::qWait(50);
        }
        qWarning("status stayed: %s",
                 qPrintable(model().mediaConverter()->enhancedProgressTracker()->statusMessage()));
        return false;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        qputenv("HOME", m_root.path().toUtf8());
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        UserDefaults::setStandardFilePath(m_root.filePath("defaults.conf"));
    }

    void init()
    {
        for (const QString& key : UserDefaults::standard().keys())
            UserDefaults::standard().removeObject(key);
        m_sources = freshDirectory("sources");
        m_outputs = freshDirectory("outputs");
        m_store = std::make_unique<PresetStore>();
        m_model = std::make_unique<ContentViewModel>(m_store.get());
        m_model->outputDirectoryModel()->useDirectory(m_outputs);
    }

    void cleanup()
    {
        m_model.reset();
        m_store.reset();
        drain();
    }

    // ---- The overwrite question (no run is started: the model is gone before its turn)

    void aMovOverItsOwnSourceAsks()
    {
        ContentViewModel& m = model();
        m.fileList()->setListedFiles({"/in/clip.mov", "/in/CLIP2.MOV"});
        m.setSelectedOutputFormat(OutputFormat::video(VideoFormat::mov));
        m.setUseSourceDirectory(true);
        m.setIncludeSettingsInFilename(false);
        QVERIFY(m.overwriteExisting());
        m.setSelectedInterlacingHandlingMode(InterlacingHandlingMode::makeProgressive);
        m.startConversion();
        QCOMPARE(m.showOverwriteWarning(), true);
        QVERIFY(m.pendingConversionSettings().has_value());
        const ContentViewModel::PendingConversion& pending = *m.pendingConversionSettings();
        QCOMPARE(pending.settings.outputFormat, OutputFormat::video(VideoFormat::mov));
        QCOMPARE(pending.settings.videoSettings.codec, VideoCodec::h264);
        QCOMPARE(pending.settings.videoSettings.resolution, std::optional(VideoResolution::p1080));
        QVERIFY(pending.settings.videoSettings.quality == QualityMode::constant(23));
        QCOMPARE(pending.settings.audioHandling, AudioHandlingMode::reencode);
        QCOMPARE(pending.settings.audioSettings.codec, AudioCodec::pcm);
        QCOMPARE(pending.settings.audioSettings.sampleRate, SampleRate::rate48000);
        QCOMPARE(pending.settings.audioSettings.bitDepth, std::optional(BitDepth::depth24));
        QCOMPARE(pending.settings.audioSettings.bitrate, std::optional(AudioBitrate::kbps256));
        QCOMPARE(pending.settings.interlacingHandlingMode,
                 InterlacingHandlingMode::makeProgressive);
        QVERIFY(pending.fileOptions == (FileOptions{false, true, true}));
        DeinterlacingSettings expected;
        expected.shouldDeinterlace = true;
        expected.method = DeinterlacingMethod::yadif;
        expected.adaptiveMode = true;
        QCOMPARE(pending.deinterlacingSettings.size(), 2);
        QVERIFY(pending.deinterlacingSettings.value("/in/clip.mov") == expected);
        QVERIFY(pending.deinterlacingSettings.value("/in/CLIP2.MOV") == expected);

        m.cancelOverwrite();
        QCOMPARE(m.showOverwriteWarning(), false);
        QVERIFY(!m.pendingConversionSettings().has_value());
        drain();
        QCOMPARE(m.mediaConverter()->batchProgressManager()->fileProgresses().size(), 0);
    }

    void theOverwriteTestLooksAtFolderExtensionAndNameSettings()
    {
        ContentViewModel& m = model();
        m.setSelectedOutputFormat(OutputFormat::video(VideoFormat::mov));
        m.setIncludeSettingsInFilename(false);
        m.setSelectedInterlacingHandlingMode(InterlacingHandlingMode::keepOriginal);
        // The chosen directory is the file's own folder.
        m.fileList()->setListedFiles({"/in/other.wav", m_outputs + "/Clip.Mov"});
        QVERIFY(m.wouldOverwriteOriginals());
        m.startConversion();
        QVERIFY(m.showOverwriteWarning());
        QVERIFY(m.pendingConversionSettings()->deinterlacingSettings.isEmpty());
        m.cancelOverwrite();

        m.fileList()->setListedFiles({"/in/clip.mov"});
        QVERIFY(!m.wouldOverwriteOriginals());
        m.setUseSourceDirectory(true);
        QVERIFY(m.wouldOverwriteOriginals());
        m.setIncludeSettingsInFilename(true);
        QVERIFY(!m.wouldOverwriteOriginals());
        m.setIncludeSettingsInFilename(false);
        m.setSelectedOutputFormat(OutputFormat::video(VideoFormat::mp4));
        QVERIFY(!m.wouldOverwriteOriginals());
        // A date in the name is not considered.
        m.setSelectedOutputFormat(OutputFormat::video(VideoFormat::mov));
        m.metadataEditor()->setMetadataWriteDateToFilename(true);
        QVERIFY(m.wouldOverwriteOriginals());
    }

    void withSettingsInTheNameOrWithoutOverwritingThereIsNoQuestion()
    {
        ContentViewModel& m = model();
        m.fileList()->setListedFiles({"/in/clip.mov"});
        m.setSelectedOutputFormat(OutputFormat::video(VideoFormat::mov));
        m.setUseSourceDirectory(true);
        m.setIncludeSettingsInFilename(true);
        m.startConversion();
        QCOMPARE(m.showOverwriteWarning(), false);
        QVERIFY(!m.pendingConversionSettings().has_value());

        m.setIncludeSettingsInFilename(false);
        m.setOverwriteExisting(false);
        m.startConversion();
        QCOMPARE(m.showOverwriteWarning(), false);
        QVERIFY(!m.pendingConversionSettings().has_value());
        // The model goes before the queued runs get their turn.
    }

    // ---- Runs on real files

    void aRunPrintsTheSelectionAndWritesTheOutput()
    {
        const QString source = makeSource("a.wav");
        ContentViewModel& m = model();
        m.addFiles({source});
        Console::Recorder recorder;
        m.startConversion();
        QCOMPARE(recorder.lines(),
                 (QStringList{"🚀 Starting conversion:", "   Selected resolution: 1080p",
                              "   Selected video codec: h264", "   Selected files: [\"a.wav\"]",
                              "   Output format: audio(wav)",
                              "🔍 Creating VideoSettings:", "   selectedVideoCodec: h264",
                              "   selectedResolution: 1080p", "   selectedFrameRate: source",
                              "🔍 VideoSettings created:", "   videoSettings.resolution: 1080p"}));
        QCOMPARE(m.showOverwriteWarning(), false);
        QVERIFY(runEnds("✅ 1 files converted successfully."));
        const QString output = m_outputs + "/Audio/wav/a (PCM_48kHz_24bit).wav";
        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(output);
        QVERIFY2(probe.found, qPrintable(Fixtures::lastError()));
        QCOMPARE(probe.codecName, QStringLiteral("pcm_s24le"));
        QCOMPARE(probe.sampleRate, 48000);
        QCOMPARE(probe.channels, 2);
        QCOMPARE(m.showingAlert(), false);
        // The panel was collapsed: nothing was stored for the file.
        QVERIFY(!UserDefaults::standard().contains("pendingMetadata_a.wav"));
        QVERIFY(!recorder.lines().contains("🔄 Auto-applying metadata for conversion:"));
    }

    void anExpandedPanelStoresTheMetadataAtTheStart()
    {
        const QString source = makeSource("b.wav");
        ContentViewModel& m = model();
        m.addFiles({source});
        MetadataEditorModel& metadata = *m.metadataEditor();
        metadata.setMetadataEditorExpanded(true);
        metadata.setMetadataCustomCreationDate(customDate);
        metadata.setMetadataUseCustomDate(true);
        metadata.setMetadataTitle("Harbour");
        m.setIncludeSettingsInFilename(false);
        m.setCreateSubfolders(false);
        Console::Recorder recorder;
        m.startConversion();
        QCOMPARE(
            recorder.lines().mid(11),
            (QStringList{"🔄 Auto-applying metadata for conversion:", "   Keep Original Date: false",
                         "   Custom Date: 1999-12-31T23:59:00Z"}));
        QVERIFY(runEnds("✅ 1 files converted successfully."));
        QTRY_VERIFY(UserDefaults::standard().contains("pendingMetadata_b.wav"));
        const QCborMap stored = PendingMetadataStore().read(source).value_or(QCborMap());
        QCOMPARE(stored.value("title").toString(), QStringLiteral("Harbour"));
        QCOMPARE(stored.value("creationDate").toDateTime(), customDate);
        QVERIFY(QFile::exists(m_outputs + "/b.wav"));
    }

    void confirmingTheQuestionReplacesTheOriginal()
    {
        const QString source = makeSource("c.wav");
        QCOMPARE(Fixtures::probeAudio(source).codecName, QStringLiteral("pcm_s16le"));
        ContentViewModel& m = model();
        m.addFiles({source});
        m.setUseSourceDirectory(true);
        m.setIncludeSettingsInFilename(false);
        m.setCreateSubfolders(false);
        m.startConversion();
        QVERIFY(m.showOverwriteWarning());
        drain();
        QCOMPARE(Fixtures::probeAudio(source).codecName, QStringLiteral("pcm_s16le"));
        m.confirmOverwrite();
        QCOMPARE(m.showOverwriteWarning(), false);
        QVERIFY(!m.pendingConversionSettings().has_value());
        QVERIFY(runEnds("✅ 1 files converted successfully."));
        QCOMPARE(Fixtures::probeAudio(source).codecName, QStringLiteral("pcm_s24le"));
        QCOMPARE(hiddenEntries(m_sources), QStringList());
    }

    void withoutOverwritingTheDriversNamingStillReplacesTheOriginal()
    {
        const QString source = makeSource("d.wav");
        ContentViewModel& m = model();
        m.addFiles({source});
        m.setUseSourceDirectory(true);
        m.setIncludeSettingsInFilename(false);
        m.setCreateSubfolders(false);
        m.setOverwriteExisting(false);
        m.startConversion();
        QCOMPARE(m.showOverwriteWarning(), false);
        QVERIFY(runEnds("✅ 1 files converted successfully."));
        QCOMPARE(Fixtures::probeAudio(source).codecName, QStringLiteral("pcm_s24le"));
        QCOMPARE(m.showingAlert(), false);
    }

    void aFailedRunShowsItsTextInTheAlert()
    {
        const QString source = makeSource("e.wav");
        QFile existing(m_outputs + "/e.wav");
        QVERIFY(existing.open(QIODevice::WriteOnly));
        existing.close();
        ContentViewModel& m = model();
        m.addFiles({source});
        m.setIncludeSettingsInFilename(false);
        m.setCreateSubfolders(false);
        m.setOverwriteExisting(false);
        m.startConversion();
        QTRY_VERIFY_WITH_TIMEOUT(m.showingAlert(), 30000);
        QCOMPARE(m.alertMessage(), QStringLiteral("An unexpected error occurred: Output file "
                                                  "already exists (overwrite disabled)"));
        QCOMPARE(QFileInfo(m_outputs + "/e.wav").size(), 0);
    }
};

QTEST_GUILESS_MAIN(TestStartConversion)
#include "tst_startconversion.moc"
