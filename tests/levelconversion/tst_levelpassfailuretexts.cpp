// SPDX-License-Identifier: GPL-3.0-or-later
// A source without sound under each level setting: the level pass runs first and fails with its
// own error, so the audio engine's "No audio track found in the source file" is reached only
// without a target. Checked at the engine (what it throws, what its tracker shows) and through
// the conversion driver (the console line and the one message the user reads).
#include "ConversionEngine/audio/AudioConverter.h"
#include "app/batch/BatchProgressManager.h"
#include "app/driver/MediaConverter.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/UserDefaults.h"
#include "tests/audio/ConversionHarness.h"
#include "tests/support/Fixtures.h"

#include <QCoro/QCoroTask>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using ConversionEngine::AudioConverter;
using ConversionEngine::AudioLevelTarget;
using TestSupport::Fixtures;

namespace {

const QString noAudioTrackAlert = QStringLiteral(
    "Invalid file structure: The selected video file does not contain an audio track. Please "
    "choose a video file with audio or select a different file.\n\nThe file may be corrupted. "
    "Try with a different file.");
const QString loudnessPassAlert =
    QStringLiteral("Conversion failed: Audio extraction failed: No audio track found\n\nTry using "
                   "different conversion settings or check the input file.");

const QString peakPassStatus = QStringLiteral("Analyzing peak levels for dBFS normalization...");
const QString loudnessPassStatus = QStringLiteral("Analyzing integrated loudness (EBU R128)...");

} // namespace

class TestLevelPassFailureTexts : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_silentVideo;

    QString outputs() const { return m_dir.filePath(QStringLiteral("outputs")); }

    struct DriverRun
    {
        QStringList alerts;
        QStringList lines;
        QString batchRow;
    };

    DriverRun runDriver(AudioLevelTarget level)
    {
        Ondrilet::ConversionSettings settings;
        settings.outputFormat = Ondrilet::OutputFormat::audio(Ondrilet::AudioFormat::wav);
        settings.audioSettings.codec = Ondrilet::AudioCodec::pcm;
        settings.audioSettings.bitDepth = Ondrilet::BitDepth::depth24;
        settings.audioSettings.sampleRate = Ondrilet::SampleRate::rate48000;
        Ondrilet::FileOptions options;
        options.includeSettingsInFilename = false;
        options.overwriteExisting = false;
        options.createSubfolders = false;

        DriverRun result;
        Ondrilet::MediaConverter converter;
        Platform::Console::Recorder recorder;
        // The driver's run never throws: every failure ends in the callback.
        QCoro::waitFor(
            converter.convertFiles({m_silentVideo}, settings, options, outputs(), {}, level, false,
                                   [&result](const QString& text) { result.alerts.append(text); }));
        result.lines = recorder.lines();
        const auto rows = converter.batchProgressManager()->fileProgresses();
        if (!rows.isEmpty())
            result.batchRow = rows.first().status.error();
        return result;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QVERIFY(QDir().mkpath(outputs()));
        Platform::UserDefaults::setStandardFilePath(
            m_dir.filePath(QStringLiteral("defaults.conf")));
        m_silentVideo = Fixtures::makeVideo(m_dir.path(), QStringLiteral("silent.mp4"), 1.0, false);
        QVERIFY2(!m_silentVideo.isEmpty(), qPrintable(Fixtures::lastError()));
        QVERIFY(!Fixtures::probeAudio(m_silentVideo).found);
    }

    void cleanup() { QCOMPARE(QDir(outputs()).entryList(QDir::Files), QStringList()); }

    void peakPassFailsFirstWithItsOwnText()
    {
        AudioConverter converter;
        ConversionEngine::AudioSettings settings =
            AudioTest::settingsFor(ConversionEngine::AudioCodec::pcm);
        settings.levelProcessing = AudioLevelTarget::dbFS(-1.0f);
        const AudioTest::Outcome outcome =
            AudioTest::convert(converter, m_silentVideo, outputs() + QStringLiteral("/a.wav"),
                               ConversionEngine::AudioFormat::wav, settings);
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(outcome.conversionError->errorDescription(),
                 QStringLiteral("Invalid file structure: No audio track found for dBFS analysis"));
        // The pass's error carries no tracker text: the last status is the pass's own line.
        QCOMPARE(converter.progressTracker()->statusMessage(), peakPassStatus);
    }

    void loudnessPassFailsFirstWithItsOwnText()
    {
        AudioConverter converter;
        ConversionEngine::AudioSettings settings =
            AudioTest::settingsFor(ConversionEngine::AudioCodec::pcm);
        settings.levelProcessing = AudioLevelTarget::integratedLUFS(-23.0f);
        const AudioTest::Outcome outcome =
            AudioTest::convert(converter, m_silentVideo, outputs() + QStringLiteral("/b.wav"),
                               ConversionEngine::AudioFormat::wav, settings);
        QVERIFY2(outcome.mediaError, qPrintable(outcome.describe()));
        QCOMPARE(outcome.mediaError->domain(), QStringLiteral("IntegratedLoudnessAnalyzer"));
        QCOMPARE(outcome.mediaError->code(), -1);
        QCOMPARE(outcome.mediaError->localizedDescription(),
                 QStringLiteral("No audio track found"));
        QCOMPARE(converter.progressTracker()->statusMessage(), loudnessPassStatus);
    }

    void withoutATargetTheEngineSaysItHasNoTrack()
    {
        AudioConverter converter;
        const AudioTest::Outcome outcome =
            AudioTest::convert(converter, m_silentVideo, outputs() + QStringLiteral("/c.wav"),
                               ConversionEngine::AudioFormat::wav,
                               AudioTest::settingsFor(ConversionEngine::AudioCodec::pcm));
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(outcome.conversionError->errorDescription(),
                 QStringLiteral("Invalid file structure: No audio track found in the source file"));
        QCOMPARE(converter.progressTracker()->statusMessage(),
                 QStringLiteral("❌ No audio track found"));
    }

    void userReadsWhatEachLevelSettingLeadsTo_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("consoleLine");
        QTest::addColumn<QString>("alert");
        QTest::newRow("peak target")
            << int(AudioLevelTarget::Kind::dbFS)
            << QStringLiteral("❌ Audio conversion error: Invalid file structure: No audio track "
                              "found for dBFS analysis")
            << noAudioTrackAlert;
        // The loudness pass's error is not the engine's own kind, so the driver's friendlier
        // no-track text does not apply: the user reads the pass's words behind the generic prefix.
        QTest::newRow("loudness target")
            << int(AudioLevelTarget::Kind::integratedLUFS)
            << QStringLiteral("❌ Unexpected audio conversion error: No audio track found")
            << loudnessPassAlert;
        QTest::newRow("no target")
            << int(AudioLevelTarget::Kind::none)
            << QStringLiteral("❌ Audio conversion error: Invalid file structure: No audio track "
                              "found in the source file")
            << noAudioTrackAlert;
    }

    void userReadsWhatEachLevelSettingLeadsTo()
    {
        QFETCH(int, kind);
        QFETCH(QString, consoleLine);
        QFETCH(QString, alert);
        AudioLevelTarget level = AudioLevelTarget::none();
        if (kind == int(AudioLevelTarget::Kind::dbFS))
            level = AudioLevelTarget::dbFS(-1.0f);
        else if (kind == int(AudioLevelTarget::Kind::integratedLUFS))
            level = AudioLevelTarget::integratedLUFS(-23.0f);

        const DriverRun run = runDriver(level);
        QCOMPARE(run.alerts, QStringList{alert});
        QVERIFY2(run.lines.contains(consoleLine), qPrintable(run.lines.join(u'\n')));
        QCOMPARE(run.batchRow, alert);
    }
};

QTEST_GUILESS_MAIN(TestLevelPassFailureTexts)
#include "tst_levelpassfailuretexts.moc"
