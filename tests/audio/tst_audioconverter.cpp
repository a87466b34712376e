// SPDX-License-Identifier: GPL-3.0-or-later
// The audio engine's run as its tracker, its progress subject and its caller see it: the
// milestone texts with their phases and fractions, the pump's paced reports, the final verdict,
// the level gains, the cancellation callback and the memory-pressure observer.
#include "ConversionEngine/audio/AudioConverter.h"
#include "ConversionEngine/core/LevelGain.h"
#include "ConversionEngine/core/Limiter.h"
#include "ConversionEngine/level/IntegratedLoudnessAnalyzer.h"
#include "ConversionEngine/level/PeakLevelPass.h"
#include "ConversionEngine/memory/MemoryManager.h"
#include "ConversionEngine/memory/StreamingBufferProcessor.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/NotificationCenter.h"
#include "tests/audio/ConversionHarness.h"
#include "tests/support/Fixtures.h"
#include "tests/support/ManualProgressClock.h"

#include <QCoro/QCoroTask>
#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <chrono>
#include <cmath>

using namespace ConversionEngine;
using AudioTest::TrackerLog;
using TestSupport::Fixtures;
using TestSupport::ManualProgressClock;

namespace {

// A clock for the pump's pacing that moves one second each time it is read, so that every
// buffer is reported.
AudioSamplePump::Clock steppingClock()
{
    auto now = std::make_shared<std::chrono::steady_clock::time_point>();
    return [now] {
        *now += std::chrono::seconds(1);
        return *now;
    };
}

// A clock that never moves: the pump never reports.
AudioSamplePump::Clock frozenClock()
{
    return [] { return std::chrono::steady_clock::time_point{}; };
}

const QStringList successMilestones48k = {
    QStringLiteral("start: Starting initializing..."),
    QStringLiteral("update: Validating input file... | Initializing | 0"),
    QStringLiteral("update: Input validation complete | Loading File | 0.05"),
    QStringLiteral("update: Loading audio asset... | Loading File | 0.05"),
    QStringLiteral("update: Analyzing audio properties... | Analyzing Media | 0.1"),
    QStringLiteral(
        "update: Audio track analysis complete (2 channels, 48000 Hz) | Configuring Export | 0.15"),
    QStringLiteral("update: Configuring audio writer... | Configuring Export | 0.2"),
    QStringLiteral("update: Audio conversion setup complete | Processing Audio | 0.25"),
    QStringLiteral("update: Starting audio conversion... | Processing Audio | 0.25"),
    QStringLiteral("update: Audio processing started | Processing Audio | 0.3"),
    QStringLiteral("update: Audio processing complete | Finalizing | 0.9"),
    QStringLiteral("update: Writing audio file... | Writing Output | 0.95"),
    QStringLiteral("update: Audio conversion completed successfully | Completed | 1"),
    QStringLiteral("complete: ✅ Audio conversion completed successfully"),
    QStringLiteral("stop"),
};

float peakOf(const std::vector<float>& samples)
{
    float peak = 0.0f;
    for (const float sample : samples)
        peak = std::max(peak, std::fabs(sample));
    return peak;
}

} // namespace

class TestAudioConverter : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_stereo48k;

    QString outputPath(const QString& name) const { return m_dir.filePath(name); }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_stereo48k = Fixtures::makeTone(m_dir.path(), QStringLiteral("tone48k.wav"), 1.5, 48000, 2,
                                         {QStringLiteral("-c:a"), QStringLiteral("pcm_s24le")});
        QVERIFY2(!m_stereo48k.isEmpty(), qPrintable(Fixtures::lastError()));
    }

    void constructionMakesItsOwnManagerAndHoldsTheStreamingProcessor()
    {
        AudioConverter converter;
        QVERIFY(converter.memoryManager() != nullptr);
        QCOMPARE(converter.memoryManager()->maxBufferPoolSize(), 50);
        QCOMPARE(converter.memoryManager()->maxActiveBuffers(), 20);
        QVERIFY(converter.streamingProcessor() != nullptr);
        QCOMPARE(converter.streamingProcessor()->bufferSize(), 4096);
        QCOMPARE(converter.streamingProcessor()->memoryManager(), converter.memoryManager());
        QVERIFY(converter.progressTracker() != nullptr);
        QCOMPARE(converter.progressTracker()->isActive(), false);

        MemoryManager shared(7, 3);
        AudioConverter sharing(&shared);
        QCOMPARE(sharing.memoryManager(), &shared);
        QCOMPARE(sharing.streamingProcessor()->memoryManager(), &shared);
    }

    void successfulRunTellsTheTrackerEachMilestoneInOrder()
    {
        ManualProgressClock clock;
        AudioConverter converter;
        converter.setProgressPacingClock(frozenClock());
        TrackerLog log(converter.progressTracker());
        const QString output = outputPath(QStringLiteral("milestones.wav"));

        const AudioTest::Outcome outcome = AudioTest::convert(
            converter, m_stereo48k, output, AudioFormat::wav,
            AudioTest::settingsFor(AudioCodec::pcm, SampleRate::rate48000, BitDepth::depth16));
        QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));
        QCOMPARE(log.lines(), successMilestones48k);
        QCOMPARE(converter.progressTracker()->isActive(), false);
        QCOMPARE(converter.progressTracker()->statusMessage(),
                 QStringLiteral("✅ Audio conversion completed successfully"));
        QCOMPARE(converter.progressTracker()->currentPhase(), ConversionPhase::completed);
        QVERIFY(converter.progressTracker()->detailedMetrics().isCompleted);
        QVERIFY(QFileInfo(output).size() > 0);
    }

    void pumpReportsShowTheShareOfTheFileAndMoveTheBarFromPointThreeToPointNine()
    {
        ManualProgressClock clock;
        AudioConverter converter;
        converter.setProgressPacingClock(steppingClock());
        TrackerLog log(converter.progressTracker());
        const AudioTest::Outcome outcome = AudioTest::convert(
            converter, m_stereo48k, outputPath(QStringLiteral("paced.wav")), AudioFormat::wav,
            AudioTest::settingsFor(AudioCodec::pcm, SampleRate::rate48000, BitDepth::depth24));
        QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));

        // With a clock that always moves on, each buffer after the first is reported.
        const QStringList reports = log.progressReports();
        QVERIFY2(reports.size() >= 5, qPrintable(reports.join(QLatin1Char('\n'))));
        const QRegularExpression form(QStringLiteral(
            R"(^update: Processing audio\.\.\. \((\d+)%\) \| Processing Audio \| ([0-9.]+)$)"));
        int lastPercent = -1;
        for (const QString& report : reports) {
            const QRegularExpressionMatch match = form.match(report);
            QVERIFY2(match.hasMatch(), qPrintable(report));
            const int percent = match.captured(1).toInt();
            const double fraction = match.captured(2).toDouble();
            QVERIFY(percent >= lastPercent);
            QVERIFY(percent <= 100);
            // The bar is 0.3 + 0.6 × the share, cleaned by the tracker (never below the last).
            QVERIFY2(fraction >= 0.3 + 0.6 * percent / 100.0 - 1e-9, qPrintable(report));
            QVERIFY2(fraction < 0.3 + 0.6 * (percent + 1) / 100.0 + 0.002, qPrintable(report));
            lastPercent = percent;
        }
        QVERIFY(lastPercent >= 90);
        // The reports sit between the start of processing and its end.
        const QStringList lines = log.lines();
        const auto started = lines.indexOf(
            QStringLiteral("update: Audio processing started | Processing Audio | 0.3"));
        const auto ended =
            lines.indexOf(QStringLiteral("update: Audio processing complete | Finalizing | 0.9"));
        QVERIFY(started >= 0 && ended > started);
        QCOMPARE(lines.indexOf(reports.first()), started + 1);
        QCOMPARE(lines.indexOf(reports.last()), ended - 1);
        QCOMPARE(log.milestones(), successMilestones48k);
    }

    void subjectHearsEveryFractionOnTheMainThread()
    {
        ManualProgressClock clock;
        AudioConverter converter;
        converter.setProgressPacingClock(frozenClock());
        std::vector<double> fractions;
        const AudioTest::Outcome outcome = AudioTest::convert(
            converter, m_stereo48k, outputPath(QStringLiteral("subject.m4a")), AudioFormat::m4a,
            AudioTest::settingsFor(AudioCodec::aac, SampleRate::rate48000, std::nullopt,
                                   AudioBitrate::kbps128),
            [&fractions](double fraction) {
                QVERIFY(QThread::currentThread() == QCoreApplication::instance()->thread());
                fractions.push_back(fraction);
            });
        QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));
        // The current value first, then each value the tracker took, up to the end.
        // The completion's own 1.0 comes after the subscription ended, so it is not heard.
        const std::vector<double> expected{0.0,  0.0,  0.05, 0.05, 0.1,  0.15, 0.2,
                                           0.25, 0.25, 0.3,  0.9,  0.95, 1.0};
        QCOMPARE(fractions, expected);
    }

    void subjectHearsNothingOnceTheRunHasEnded()
    {
        ManualProgressClock clock;
        AudioConverter converter;
        int heard = 0;
        const AudioTest::Outcome outcome = AudioTest::convert(
            converter, m_stereo48k, outputPath(QStringLiteral("late.wav")), AudioFormat::wav,
            AudioTest::settingsFor(AudioCodec::pcm), [&heard](double) { ++heard; });
        QVERIFY(outcome.succeeded());
        const int atEnd = heard;
        converter.progressTracker()->updateProgress(0.5);
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        QCOMPARE(heard, atEnd);
    }

    void failureBeforeThePumpStopsTwiceAndThrows()
    {
        ManualProgressClock clock;
        AudioConverter converter;
        TrackerLog log(converter.progressTracker());
        const QString missingFolder = m_dir.filePath(QStringLiteral("no-such-folder"));
        const AudioTest::Outcome outcome =
            AudioTest::convert(converter, m_stereo48k, missingFolder + QStringLiteral("/x.wav"),
                               AudioFormat::wav, AudioTest::settingsFor(AudioCodec::pcm));
        QVERIFY(outcome.conversionError);
        QCOMPARE(outcome.conversionError->kind(), ConversionError::Kind::outputLocationNotWritable);
        QCOMPARE(outcome.conversionError->url(), missingFolder);
        const QString text = QStringLiteral("Cannot write to output location: ") + missingFolder;
        QCOMPARE(outcome.conversionError->errorDescription(), text);
        const QStringList expected{
            QStringLiteral("start: Starting initializing..."),
            QStringLiteral("update: Validating input file... | Initializing | 0"),
            QStringLiteral("stop: ") + text,
            QStringLiteral("stop"),
        };
        QCOMPARE(log.lines(), expected);
        QCOMPARE(converter.progressTracker()->statusMessage(), QStringLiteral("❌ ") + text);
        QVERIFY(converter.progressTracker()->detailedMetrics().isFailed);
    }

    void outputThatExistsPassesTheWritersErrorUnchanged()
    {
        ManualProgressClock clock;
        AudioConverter converter;
        TrackerLog log(converter.progressTracker());
        const QString output = outputPath(QStringLiteral("exists.wav"));
        QFile file(output);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("keep me");
        file.close();
        const AudioTest::Outcome outcome =
            AudioTest::convert(converter, m_stereo48k, output, AudioFormat::wav,
                               AudioTest::settingsFor(AudioCodec::pcm));
        QVERIFY2(outcome.mediaError, qPrintable(outcome.describe()));
        QCOMPARE(outcome.mediaError->code(), int(Platform::MediaError::fileAlreadyExists));
        // No text of its own: the tracker only hears the closing stop.
        QCOMPARE(log.lines().last(), QStringLiteral("stop"));
        QCOMPARE(log.lines().at(log.lines().size() - 2),
                 QStringLiteral("update: Configuring audio writer... | Configuring Export | 0.2"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("keep me"));
    }

    void trackerIsReusedByTheNextRun()
    {
        ManualProgressClock clock;
        AudioConverter converter;
        converter.setProgressPacingClock(frozenClock());
        const AudioTest::Outcome first = AudioTest::convert(
            converter, m_stereo48k, outputPath(QStringLiteral("first.aiff")), AudioFormat::aiff,
            AudioTest::settingsFor(AudioCodec::pcm, SampleRate::rate48000, BitDepth::depth16));
        QVERIFY(first.succeeded());
        TrackerLog log(converter.progressTracker());
        const AudioTest::Outcome second = AudioTest::convert(
            converter, m_stereo48k, outputPath(QStringLiteral("second.aiff")), AudioFormat::aiff,
            AudioTest::settingsFor(AudioCodec::pcm, SampleRate::rate48000, BitDepth::depth16));
        QVERIFY(second.succeeded());
        QCOMPARE(log.lines(), successMilestones48k);
        QCOMPARE(converter.progressTracker()->detailedMetrics().progressUpdates, 24);
    }

    void cancellationRequestOnlyTellsAndTheFileStillConverts()
    {
        AudioConverter converter;
        Platform::Console::Recorder console;
        const QString output = outputPath(QStringLiteral("cancel-asked.wav"));
        AudioTest::Outcome outcome;
        QEventLoop loop;
        QCoro::Task<> running = TestSupport::captureOutcome(
            converter.extractAudio(m_stereo48k, output, AudioFormat::wav,
                                   AudioTest::settingsFor(AudioCodec::pcm), {}),
            outcome, &loop);
        // The run is under way and suspended at its first load.
        QVERIFY(converter.progressTracker()->isActive());
        converter.progressTracker()->requestCancellation();
        QCOMPARE(console.lines(),
                 QStringList{QStringLiteral("⚠️ Audio conversion cancellation requested")});
        if (!outcome.finished)
            loop.exec();
        QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));
        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(output);
        QCOMPARE(probe.codecName, QStringLiteral("pcm_s16le"));
    }

    void peakTargetScalesSoTheLoudestSampleLandsOnTheTarget()
    {
        AudioConverter converter;
        AudioSettings settings =
            AudioTest::settingsFor(AudioCodec::pcm, SampleRate::rate48000, BitDepth::depth24);
        settings.levelProcessing = AudioLevelTarget::dbFS(-3.0f);
        TrackerLog log(converter.progressTracker());
        const QString output = outputPath(QStringLiteral("peak.wav"));
        const AudioTest::Outcome outcome =
            AudioTest::convert(converter, m_stereo48k, output, AudioFormat::wav, settings);
        QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));
        QVERIFY(log.lines().contains(QStringLiteral(
            "update: Analyzing peak levels for dBFS normalization... | Analyzing Media | 0.12")));

        const TestSupport::DecodedAudio source = Fixtures::decode(m_stereo48k);
        const TestSupport::DecodedAudio result = Fixtures::decode(output);
        QCOMPARE(result.samples.size(), source.samples.size());
        const float gain =
            LevelGain::dbfsGain(-3.0f, LevelGain::decibelsFromPeak(peakOf(source.samples)));
        for (std::size_t i = 0; i < source.samples.size(); ++i) {
            const float expected =
                Limiter::limitSample(Limiter::Path::peak, gain, source.samples[i]);
            QVERIFY2(std::fabs(result.samples[i] - expected) < 2e-7f,
                     qPrintable(QStringLiteral("sample %1: %2 instead of %3")
                                    .arg(i)
                                    .arg(result.samples[i])
                                    .arg(expected)));
        }
        QVERIFY(std::fabs(peakOf(result.samples) - std::pow(10.0f, -3.0f / 20.0f)) < 1e-4f);
    }

    void peakTargetAboveTheCeilingIsClippedAtTheLimit()
    {
        AudioConverter converter;
        AudioSettings settings =
            AudioTest::settingsFor(AudioCodec::pcm, SampleRate::rate48000, BitDepth::depth24);
        settings.levelProcessing = AudioLevelTarget::dbFS(6.0f);
        const QString output = outputPath(QStringLiteral("clipped.wav"));
        const AudioTest::Outcome outcome =
            AudioTest::convert(converter, m_stereo48k, output, AudioFormat::wav, settings);
        QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));
        const float peak = peakOf(Fixtures::decode(output).samples);
        QVERIFY2(std::fabs(peak - Limiter::ceiling) < 2e-7f, qPrintable(QString::number(peak)));
    }

    void loudnessTargetScalesWithTheSafetyFactor()
    {
        AudioConverter converter;
        AudioSettings settings =
            AudioTest::settingsFor(AudioCodec::pcm, SampleRate::rate48000, BitDepth::depth24);
        settings.levelProcessing = AudioLevelTarget::integratedLUFS(-23.0f);
        TrackerLog log(converter.progressTracker());
        const QString output = outputPath(QStringLiteral("loudness.wav"));
        const AudioTest::Outcome outcome =
            AudioTest::convert(converter, m_stereo48k, output, AudioFormat::wav, settings);
        QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));
        QVERIFY(log.lines().contains(QStringLiteral(
            "update: Analyzing integrated loudness (EBU R128)... | Analyzing Media | 0.12")));

        const IntegratedLoudnessAnalyzer::Result measured =
            IntegratedLoudnessAnalyzer::analyzeBlocking(m_stereo48k);
        const float gain = LevelGain::lufsGain(-23.0f, measured.integratedLUFS);
        QVERIFY(gain < 1.0f);
        const TestSupport::DecodedAudio source = Fixtures::decode(m_stereo48k);
        const TestSupport::DecodedAudio result = Fixtures::decode(output);
        QCOMPARE(result.samples.size(), source.samples.size());
        for (std::size_t i = 0; i < source.samples.size(); ++i) {
            const float expected =
                Limiter::limitSample(Limiter::Path::loudness, gain, source.samples[i]);
            QVERIFY2(std::fabs(result.samples[i] - expected) < 2e-7f,
                     qPrintable(QString::number(i)));
        }
    }

    void levelPassFailureIsThrownUnchangedWithoutATrackerText()
    {
        ManualProgressClock clock;
        AudioConverter converter;
        TrackerLog log(converter.progressTracker());
        const QString video =
            Fixtures::makeVideo(m_dir.path(), QStringLiteral("silent.mp4"), 1.0, false);
        QVERIFY(!video.isEmpty());
        AudioSettings settings = AudioTest::settingsFor(AudioCodec::pcm);
        settings.levelProcessing = AudioLevelTarget::dbFS(-1.0f);
        const AudioTest::Outcome outcome = AudioTest::convert(
            converter, video, outputPath(QStringLiteral("silent.wav")), AudioFormat::wav, settings);
        QVERIFY2(outcome.conversionError, qPrintable(outcome.describe()));
        QCOMPARE(outcome.conversionError->errorDescription(),
                 QStringLiteral("Invalid file structure: No audio track found for dBFS analysis"));
        const QStringList expectedTail{
            QStringLiteral(
                "update: Analyzing peak levels for dBFS normalization... | Analyzing Media | 0.12"),
            QStringLiteral("stop"),
        };
        QCOMPARE(log.lines().mid(log.lines().size() - 2), expectedTail);
        QVERIFY(!QFileInfo::exists(outputPath(QStringLiteral("silent.wav"))));
    }

    void memoryPressureCleansTheManagerUp()
    {
        MemoryManager manager(50, 20);
        QVERIFY(manager.memoryMonitorTimer() != nullptr);
        AudioConverter converter(&manager);
        Platform::NotificationCenter::defaultCenter().post(
            QStringLiteral("memoryPressureDetected"));
        QTRY_VERIFY_WITH_TIMEOUT(manager.memoryMonitorTimer() == nullptr, 2000);
        QCOMPARE(manager.memoryUsage(), 0);
    }

    void memoryPressureAfterASharedManagerIsGoneDoesNothing()
    {
        auto* manager = new MemoryManager(50, 20);
        AudioConverter converter(manager);
        delete manager;
        QCOMPARE(converter.memoryManager(), nullptr);
        Platform::NotificationCenter::defaultCenter().post(
            QStringLiteral("memoryPressureDetected"));
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
    }

    void lateMemoryPressureAfterTheConverterIsGoneDoesNothing()
    {
        MemoryManager manager(50, 20);
        auto* converter = new AudioConverter(&manager);
        Platform::NotificationCenter::defaultCenter().post(
            QStringLiteral("memoryPressureDetected"));
        delete converter;
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
        QVERIFY(manager.memoryMonitorTimer() != nullptr);
    }
};

QTEST_GUILESS_MAIN(TestAudioConverter)
#include "tst_audioconverter.moc"
