// SPDX-License-Identifier: GPL-3.0-or-later
// The video engine's entry with real files: the guard against a second run (whose publisher takes
// over the first run's reports), the check for a video track, the progress steps in order, the
// state after success and failure, the CRF of every quality mode, and cancellation.
#include "platform/foundation/Console.h"
#include "tests/video/VideoHarness.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace ConversionEngine;
using namespace VideoTest;
using TestSupport::Fixtures;

class TestVideoConverter : public QObject
{
    Q_OBJECT

    QTemporaryDir m_directory;
    QString m_clip;

    QString outputPath(const QString& name) const { return m_directory.filePath(name); }

private slots:
    void initTestCase()
    {
        QVERIFY(m_directory.isValid());
        m_clip = Fixtures::makeVideo(m_directory.path(), QStringLiteral("clip.mp4"), 3.0, true);
        QVERIFY2(!m_clip.isEmpty(), qPrintable(Fixtures::lastError()));
    }

    void progressStepsInOrderAndStateAfterSuccess()
    {
        VideoConverter converter;
        QStringList statuses;
        connect(converter.progressTracker(), &EnhancedProgressTracker::statusMessageChanged, this,
                [&statuses](const QString& text) { statuses.append(text); });
        std::vector<double> published;
        QSignalSpy converting(&converter, &VideoConverter::isConvertingChanged);
        const Outcome outcome = convert(converter, m_clip, outputPath("steps.mp4"), settingsFor(),
                                        [&published](double value) { published.push_back(value); });
        QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));

        const QStringList expectedStart{
            "Starting Initializing...",      "Loading video file...",
            "Analyzing video properties...", "Video analysis complete",
            "Setting up CRF conversion...",  "Starting CRF conversion..."};
        QVERIFY2(statuses.size() > expectedStart.size(), qPrintable(statuses.join(" | ")));
        QCOMPARE(statuses.mid(1, expectedStart.size() - 1), expectedStart.mid(1));
        QVERIFY(statuses.contains("Encoding video (0 frames)...") ||
                statuses.contains("Encoding video (60 frames)..."));
        // The clip has sound; whichever pump ends last words the completion.
        QVERIFY(statuses.contains("✅ Conversion completed successfully!") ||
                statuses.contains("✅ CRF conversion completed successfully!"));

        QCOMPARE(converter.statusMessage(), QString());
        QVERIFY(!converter.isConverting());
        QCOMPARE(converting.first().first().toBool(), true);
        QCOMPARE(converting.last().first().toBool(), false);
        // The last value stays; it is not reset at the end.
        QVERIFY(!published.empty());
        QCOMPARE(published.front(), 0.0);
        QCOMPARE(converter.progress(), published.back());
        QVERIFY(converter.progress() >= 0.25);
    }

    void audioOnlyInputHasNoVideoTrack()
    {
        const QString tone =
            Fixtures::makeTone(m_directory.path(), QStringLiteral("tone.m4a"), 1.0, 44100, 2,
                               {QStringLiteral("-c:a"), QStringLiteral("aac")});
        QVERIFY(!tone.isEmpty());
        VideoConverter converter;
        QStringList statuses;
        connect(&converter, &VideoConverter::statusMessageChanged, this,
                [&statuses](const QString& text) { statuses.append(text); });
        QSignalSpy progress(&converter, &VideoConverter::progressChanged);
        const Outcome outcome = convert(converter, tone, outputPath("tone.mp4"), settingsFor());
        QVERIFY(outcome.conversionError);
        QCOMPARE(outcome.conversionError->kind(), ConversionError::Kind::invalidFileStructure);
        QCOMPARE(outcome.conversionError->detail(),
                 QStringLiteral("No video tracks found in input file"));
        // The failure text shows for no visible time, then the status is cleared.
        QVERIFY(statuses.contains(
            "Conversion failed: Invalid file structure: No video tracks found in input file"));
        QCOMPARE(converter.statusMessage(), QString());
        QVERIFY(!converter.isConverting());
        // The last value stays: the end of the run does not reset it.
        QVERIFY(!progress.isEmpty());
        QCOMPARE(converter.progress(), progress.last().first().toDouble());
    }

    void missingInputFailsValidation()
    {
        VideoConverter converter;
        QStringList statuses;
        connect(&converter, &VideoConverter::statusMessageChanged, this,
                [&statuses](const QString& text) { statuses.append(text); });
        const Outcome outcome =
            convert(converter, outputPath("missing.mp4"), outputPath("out.mp4"), settingsFor());
        QVERIFY(outcome.conversionError);
        QCOMPARE(outcome.conversionError->kind(), ConversionError::Kind::inputFileNotFound);
        for (const QString& status : statuses)
            QVERIFY(!status.startsWith("Conversion failed: "));
        QCOMPARE(converter.statusMessage(), QString());
        QVERIFY(!converter.isConverting());
    }

    void secondCallWhileRunningIsRefusedAndTakesOverTheReports()
    {
        VideoConverter converter;
        std::vector<double> first;
        std::vector<double> second;
        std::optional<Outcome> refused;
        QEventLoop loop;
        Outcome running;
        std::optional<QCoro::Task<>> refusedTask;
        connect(&converter, &VideoConverter::isConvertingChanged, this, [&](bool converting) {
            if (!converting || refused)
                return;
            refused = Outcome{};
            refusedTask.emplace(capture(
                converter.convertVideo(m_clip, outputPath("second.mp4"), settingsFor(),
                                       std::nullopt,
                                       [&second](double value) { second.push_back(value); }),
                *refused, nullptr));
        });
        QCoro::Task<> task = capture(
            converter.convertVideo(m_clip, outputPath("first.mp4"), settingsFor(), std::nullopt,
                                   [&first](double value) { first.push_back(value); }),
            running, &loop);
        if (!running.finished)
            loop.exec();
        QVERIFY(refused && refused->finished);
        QVERIFY(refused->conversionError);
        QCOMPARE(refused->conversionError->errorDescription(),
                 QStringLiteral("Conversion failed: A conversion is already in progress"));
        QVERIFY2(running.succeeded(), qPrintable(running.describe()));
        QVERIFY(QFileInfo::exists(outputPath("first.mp4")));
        QVERIFY(!QFileInfo::exists(outputPath("second.mp4")));
        // From the refused call on, the first run reports to the second publisher.
        QVERIFY(!second.empty());
        QVERIFY(second.back() >= 0.25);
        for (const double value : first)
            QVERIFY(value < 0.1);
    }

    void everyQualityModeEncodesAtCrf23()
    {
        const QList<QualityMode> modes{QualityMode::constant(23), QualityMode::averageBitrate(5000),
                                       QualityMode::variableBitrate(1000, 10000),
                                       QualityMode::twoPassVBR(5000, 1000, 10000)};
        QStringList settingsLines;
        for (const QualityMode& mode : modes) {
            VideoConversionSettings settings = settingsFor();
            settings.qualityMode = mode;
            VideoConverter converter;
            Platform::Console::Recorder console;
            const Outcome outcome = convert(converter, m_clip, outputPath("mode.mp4"), settings);
            QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));
            const QStringList lines = console.lines();
            QVERIFY(
                lines.contains(mode.kind == QualityMode::Kind::constant
                                   ? "🎯 Starting conversion with AVAssetWriter (CRF 23)"
                                   : "⚠️ Non-CRF mode requested - defaulting to AVAssetWriter "
                                     "with CRF 23"));
            for (const QString& line : lines)
                if (line.startsWith("🎯 CRF 23 video settings"))
                    settingsLines.append(line);
        }
        QCOMPARE(settingsLines.size(), 4);
        QCOMPARE(settingsLines.count(settingsLines.first()), 4);
    }

    void cancelChangesTheTextOnly()
    {
        VideoConverter converter;
        converter.cancelConversion();
        QCOMPARE(converter.statusMessage(), QString());
        QVERIFY(!converter.progressTracker()->cancellationRequested());

        Platform::Console::Recorder console;
        connect(&converter, &VideoConverter::isConvertingChanged, this, [&converter](bool on) {
            if (on)
                converter.cancelConversion();
        });
        const Outcome outcome =
            convert(converter, m_clip, outputPath("cancelled.mp4"), settingsFor());
        QVERIFY2(outcome.succeeded(), qPrintable(outcome.describe()));
        QVERIFY(console.lines().contains("⚠️ Video conversion cancellation requested"));
        QCOMPARE(int(frameTimes(outputPath("cancelled.mp4")).size()), 75);
    }
};

QTEST_GUILESS_MAIN(TestVideoConverter)
#include "tst_videoconverter.moc"
