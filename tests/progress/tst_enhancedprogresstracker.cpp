// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "tests/support/ManualProgressClock.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <limits>

using ConversionEngine::ConversionMetrics;
using ConversionEngine::ConversionPhase;
using ConversionEngine::EnhancedProgressTracker;
using TestSupport::ManualProgressClock;

class TestEnhancedProgressTracker : public QObject
{
    Q_OBJECT

private slots:
    void newTrackerIsIdleAndReady()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        QCOMPARE(tracker.progress(), 0.0);
        QCOMPARE(tracker.statusMessage(), QStringLiteral("Ready"));
        QCOMPARE(tracker.isActive(), false);
        QCOMPARE(tracker.currentPhase(), ConversionPhase::initializing);
        QCOMPARE(tracker.heartbeatActive(), false);
        QVERIFY(tracker.detailedMetrics() == ConversionMetrics{});
        QVERIFY(tracker.heartbeatTimer() == nullptr);
        QVERIFY(tracker.progressTimer() == nullptr);
        QCOMPARE(tracker.lastProgressUpdate(), clock.now());
        QCOMPARE(tracker.lastProgressValue(), 0.0);
        QCOMPARE(tracker.progressValidationEnabled(), true);
        QCOMPARE(tracker.cancellationRequested(), false);
        QCOMPARE(tracker.hasCancellationCallback(), false);
        QCOMPARE(EnhancedProgressTracker::stagnationThreshold, 5.0);
        QCOMPARE(EnhancedProgressTracker::heartbeatInterval, 0.25);
        QCOMPARE(EnhancedProgressTracker::progressUpdateInterval, 0.1);
        QCOMPARE(EnhancedProgressTracker::minimumProgressIncrement, 0.001);

        const ConversionMetrics metrics;
        QCOMPARE(metrics.elapsedTime(), 0.0);
        QCOMPARE(metrics.phaseElapsedTime(), 0.0);
        QVERIFY(!metrics.estimatedTimeRemaining());
        QCOMPARE(metrics.currentPhase, ConversionPhase::initializing);
    }

    void startTrackingSetsStateTextAndBothTimers()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        clock.advance(3);
        tracker.startTracking(ConversionPhase::processingVideo);
        QCOMPARE(tracker.isActive(), true);
        QCOMPARE(tracker.currentPhase(), ConversionPhase::processingVideo);
        QCOMPARE(tracker.statusMessage(), QStringLiteral("Starting processing video..."));
        QCOMPARE(tracker.progress(), 0.0);
        QCOMPARE(tracker.lastProgressUpdate(), clock.now());
        QVERIFY(tracker.heartbeatTimer() != nullptr);
        QCOMPARE(tracker.heartbeatTimer()->interval(), 250);
        QCOMPARE(tracker.heartbeatTimer()->isSingleShot(), false);
        QCOMPARE(tracker.heartbeatTimer()->isActive(), true);
        QVERIFY(tracker.progressTimer() != nullptr);
        QCOMPARE(tracker.progressTimer()->interval(), 100);
        QCOMPARE(tracker.progressTimer()->isSingleShot(), false);
        QCOMPARE(tracker.progressTimer()->isActive(), true);

        EnhancedProgressTracker other;
        other.startTracking(ConversionPhase::initializing);
        QCOMPARE(other.statusMessage(), QStringLiteral("Starting initializing..."));
    }

    void fractionsAreClampedToTheUnitRange()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker high;
        high.updateProgress(1.5);
        QVERIFY(high.progress() == 1.0);
        QVERIFY(high.lastProgressValue() == 1.0);

        EnhancedProgressTracker low;
        low.updateProgress(-0.2);
        QVERIFY(low.progress() == 0.0);

        EnhancedProgressTracker nan;
        nan.updateProgress(std::numeric_limits<double>::quiet_NaN(), QStringLiteral("x"));
        QVERIFY(nan.progress() == 1.0);
    }

    void smallBackwardStepsAreSwallowedLargeOnesBelieved()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        tracker.updateProgress(0.5);
        QVERIFY(tracker.progress() == 0.5);
        tracker.updateProgress(0.45);
        QVERIFY(tracker.progress() == 0.5);
        // 0.50 − 0.40 is just below 0.1 in double arithmetic, so this step is swallowed too.
        tracker.updateProgress(0.40);
        QVERIFY(tracker.progress() == 0.5);
        tracker.updateProgress(0.30);
        QVERIFY(tracker.progress() == 0.30);
        QVERIFY(tracker.lastProgressValue() == 0.30);
    }

    void tinyForwardStepsAreInflatedToTheIncrement()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        tracker.updateProgress(0.5);
        tracker.updateProgress(0.5004);
        QVERIFY(tracker.progress() == 0.5 + 0.001);
        QCOMPARE(tracker.progress(), 0.501);

        EnhancedProgressTracker same;
        same.updateProgress(0.5);
        same.updateProgress(0.50);
        QVERIFY(same.progress() == 0.5);

        EnhancedProgressTracker onwards;
        onwards.updateProgress(0.5);
        onwards.updateProgress(0.502);
        QVERIFY(onwards.progress() == 0.502);
    }

    void withValidationOffValuesPassAsGiven()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        tracker.setProgressValidationEnabled(false);
        tracker.updateProgress(-3.25, QStringLiteral("below"));
        QVERIFY(tracker.progress() == -3.25);
        tracker.updateProgress(7.5, QStringLiteral("above"));
        QVERIFY(tracker.progress() == 7.5);
        tracker.updateProgress(7.4996, QStringLiteral("tiny step back"));
        QVERIFY(tracker.progress() == 7.4996);
    }

    void updateSetsPhaseTextMetricsAndHeartbeat()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        tracker.startTracking(ConversionPhase::initializing);
        const QDateTime started = clock.now();
        tracker.updateProgress(0.05, QStringLiteral("Loading audio asset..."),
                               ConversionPhase::loading);
        QCOMPARE(tracker.statusMessage(), QStringLiteral("Loading audio asset..."));
        QCOMPARE(tracker.currentPhase(), ConversionPhase::loading);
        QCOMPARE(tracker.heartbeatActive(), true);
        ConversionMetrics metrics = tracker.detailedMetrics();
        QCOMPARE(metrics.startTime, std::optional<QDateTime>(started));
        QCOMPARE(metrics.lastUpdateTime, std::optional<QDateTime>(started));
        QCOMPARE(metrics.progressUpdates, qint64(1));
        QCOMPARE(metrics.currentPhase, ConversionPhase::loading);
        QCOMPARE(metrics.phaseStartTime, std::optional<QDateTime>(started));
        QCOMPARE(metrics.averageProgressRate, 0.0); // no time has passed yet

        clock.advance(2);
        // No phase given: the phase stays and its default text shows.
        tracker.updateProgress(0.29, std::nullopt, ConversionPhase::processingAudio);
        QCOMPARE(tracker.statusMessage(), QStringLiteral("Processing audio stream... (28%)"));
        clock.advance(2);
        tracker.updateProgress(0.42);
        QCOMPARE(tracker.currentPhase(), ConversionPhase::processingAudio);
        QCOMPARE(tracker.statusMessage(), QStringLiteral("Processing audio stream... (42%)"));
        metrics = tracker.detailedMetrics();
        QCOMPARE(metrics.progressUpdates, qint64(3));
        QCOMPARE(metrics.startTime, std::optional<QDateTime>(started));
        QCOMPARE(metrics.phaseStartTime, std::optional<QDateTime>(started.addSecs(2)));
        QCOMPARE(metrics.phaseElapsedTime(), 2.0);
        QCOMPARE(metrics.elapsedTime(), 4.0);
        QCOMPARE(metrics.averageProgressRate, 0.42 / 4.0);
        QCOMPARE(tracker.lastProgressUpdate(), clock.now());
    }

    void estimatedTimeRemainingReadsTheRateAsAFraction()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        tracker.updateProgress(0.1);
        QVERIFY(!tracker.detailedMetrics().estimatedTimeRemaining()); // rate still 0
        clock.advance(2);
        tracker.updateProgress(0.6);
        const ConversionMetrics metrics = tracker.detailedMetrics();
        QCOMPARE(metrics.averageProgressRate, 0.3);
        QCOMPARE(*metrics.estimatedTimeRemaining(), (1.0 - 0.3) * (2.0 / 0.3));

        EnhancedProgressTracker fast;
        fast.updateProgress(0.1);
        clock.advance(0.5);
        fast.updateProgress(0.8);
        QCOMPARE(fast.detailedMetrics().averageProgressRate, 1.6);
        QCOMPARE(*fast.detailedMetrics().estimatedTimeRemaining(), 0.0);
    }

    void statusTextsOfEveryPhase_data()
    {
        QTest::addColumn<ConversionPhase>("phase");
        QTest::addColumn<QString>("text");
        QTest::newRow("initializing")
            << ConversionPhase::initializing << QStringLiteral("Initializing conversion engine...");
        QTest::newRow("loading") << ConversionPhase::loading
                                 << QStringLiteral("Loading and analyzing media file...");
        QTest::newRow("analyzing") << ConversionPhase::analyzing
                                   << QStringLiteral("Analyzing media properties and format...");
        QTest::newRow("configuring")
            << ConversionPhase::configuring << QStringLiteral("Configuring conversion settings...");
        QTest::newRow("processingVideo") << ConversionPhase::processingVideo
                                         << QStringLiteral("Processing video stream... (25%)");
        QTest::newRow("encodingFrames")
            << ConversionPhase::encodingFrames << QStringLiteral("Encoding video frames... (25%)");
        QTest::newRow("processingAudio") << ConversionPhase::processingAudio
                                         << QStringLiteral("Processing audio stream... (25%)");
        QTest::newRow("finalizing")
            << ConversionPhase::finalizing << QStringLiteral("Finalizing conversion... (25%)");
        QTest::newRow("writing") << ConversionPhase::writing
                                 << QStringLiteral("Writing output file... (25%)");
        QTest::newRow("verifying")
            << ConversionPhase::verifying << QStringLiteral("Verifying output file integrity...");
        QTest::newRow("completed")
            << ConversionPhase::completed << QStringLiteral("✅ Conversion completed successfully!");
    }

    void statusTextsOfEveryPhase()
    {
        QFETCH(ConversionPhase, phase);
        QFETCH(QString, text);
        QCOMPARE(ConversionEngine::statusText(phase, 0.2599), text);
    }

    void statusTextPercentIsTruncated()
    {
        using ConversionEngine::statusText;
        QCOMPARE(statusText(ConversionPhase::writing, 0.999),
                 QStringLiteral("Writing output file... (99%)"));
        QCOMPARE(statusText(ConversionPhase::writing, 1.0),
                 QStringLiteral("Writing output file... (100%)"));
        QCOMPARE(statusText(ConversionPhase::writing, 0.0),
                 QStringLiteral("Writing output file... (0%)"));
    }

    void stagnationMessagesByWholeSeconds_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("text");
        const QString analyzing = QStringLiteral("Processing... (analyzing complex media)");
        const QString large = QStringLiteral("Processing... (handling large file section)");
        const QString segment = QStringLiteral("Processing... (encoding complex video segment)");
        const QString challenging =
            QStringLiteral("Processing... (working on challenging media section)");
        QTest::newRow("5.001") << 5.001 << analyzing;
        QTest::newRow("9.999") << 9.999 << analyzing;
        QTest::newRow("10") << 10.0 << large;
        QTest::newRow("29.99") << 29.99 << large;
        QTest::newRow("30") << 30.0 << segment;
        QTest::newRow("59.9") << 59.9 << segment;
        QTest::newRow("60") << 60.0 << challenging;
        QTest::newRow("a day") << 86400.0 << challenging;
    }

    void stagnationMessagesByWholeSeconds()
    {
        QFETCH(double, seconds);
        QFETCH(QString, text);
        QCOMPARE(ConversionEngine::stagnationMessage(seconds), text);
    }

    void aStallOfExactlyTheThresholdReportsNothing()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        tracker.startTracking(ConversionPhase::processingAudio);
        tracker.updateProgress(0.4, QStringLiteral("Processing audio... (16%)"));
        const QDateTime lastUpdate = clock.now();
        clock.advance(5.0);
        tracker.progressTimerFired();
        QCOMPARE(tracker.statusMessage(), QStringLiteral("Processing audio... (16%)"));
        QCOMPARE(tracker.detailedMetrics().stagnationEvents, qint64(0));
        QCOMPARE(tracker.detailedMetrics().totalStagnationTime, 0.0);
        // The check itself still stamps the metrics.
        QCOMPARE(tracker.detailedMetrics().lastUpdateTime, std::optional<QDateTime>(clock.now()));

        clock.advance(0.001);
        tracker.progressTimerFired();
        QCOMPARE(tracker.statusMessage(),
                 QStringLiteral("Processing... (analyzing complex media)"));
        QCOMPARE(tracker.detailedMetrics().stagnationEvents, qint64(1));
        QCOMPARE(tracker.detailedMetrics().totalStagnationTime, 5.001);
        QCOMPARE(tracker.lastProgressUpdate(), lastUpdate);
    }

    void everyTickOfOneStallCountsTheWholeGapAgain()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        tracker.startTracking(ConversionPhase::processingVideo);
        tracker.updateProgress(0.3, QStringLiteral("(1/1) Converting a.mov..."));
        clock.advance(5.1);
        tracker.progressTimerFired();
        clock.advance(0.1);
        tracker.progressTimerFired();
        clock.advance(0.1);
        tracker.progressTimerFired();
        const ConversionMetrics metrics = tracker.detailedMetrics();
        QCOMPARE(metrics.stagnationEvents, qint64(3));
        QCOMPARE(metrics.totalStagnationTime, 5.1 + 5.2 + 5.3);

        clock.advance(5.0); // 10.3 s without progress
        tracker.progressTimerFired();
        QCOMPARE(tracker.statusMessage(),
                 QStringLiteral("Processing... (handling large file section)"));
        QCOMPARE(tracker.detailedMetrics().stagnationEvents, qint64(4));

        // The next update puts its own text back and ends the stall.
        tracker.updateProgress(0.31, QStringLiteral("(1/1) Converting a.mov..."));
        clock.advance(0.1);
        tracker.progressTimerFired();
        QCOMPARE(tracker.statusMessage(), QStringLiteral("(1/1) Converting a.mov..."));
        QCOMPARE(tracker.detailedMetrics().stagnationEvents, qint64(4));
    }

    void aStallAtTheEndChangesNothing()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        tracker.startTracking(ConversionPhase::writing);
        tracker.updateProgress(1.0, QStringLiteral("Writing audio file..."));
        clock.advance(12);
        tracker.progressTimerFired();
        QCOMPARE(tracker.statusMessage(), QStringLiteral("Writing audio file..."));
        QCOMPARE(tracker.detailedMetrics().stagnationEvents, qint64(0));
        QCOMPARE(tracker.detailedMetrics().totalStagnationTime, 0.0);
    }

    void completionKeepsTrackingForOneSecond()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        tracker.startTracking(ConversionPhase::initializing);
        tracker.updateProgress(0.7, QStringLiteral("Writing audio file..."),
                               ConversionPhase::writing);
        clock.advance(1);
        tracker.completeTracking(QStringLiteral("✅ Audio conversion completed successfully"));
        const QDateTime completedAt = clock.now();
        QVERIFY(tracker.progress() == 1.0);
        QCOMPARE(tracker.statusMessage(),
                 QStringLiteral("✅ Audio conversion completed successfully"));
        QCOMPARE(tracker.currentPhase(), ConversionPhase::completed);
        QCOMPARE(tracker.isActive(), true);
        ConversionMetrics metrics = tracker.detailedMetrics();
        QCOMPARE(metrics.endTime, std::optional<QDateTime>(completedAt));
        QCOMPARE(metrics.isCompleted, true);
        QCOMPARE(metrics.isFailed, false);

        clock.advance(0.999);
        QCOMPARE(tracker.isActive(), true);
        QVERIFY(tracker.heartbeatTimer() != nullptr);
        clock.advance(0.001);
        QCOMPARE(tracker.isActive(), false);
        QCOMPARE(tracker.heartbeatActive(), false);
        QVERIFY(tracker.heartbeatTimer() == nullptr);
        QVERIFY(tracker.progressTimer() == nullptr);
        QCOMPARE(tracker.statusMessage(),
                 QStringLiteral("✅ Audio conversion completed successfully"));
        QCOMPARE(tracker.cancellationRequested(), true); // set on every stop
        metrics = tracker.detailedMetrics();
        QCOMPARE(metrics.isCompleted, true);
        QCOMPARE(metrics.elapsedTime(), 1.0);
    }

    void failingStopMarksTheMetricsAndCleanUpStopKeepsTheText()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        bool called = false;
        tracker.startTracking(ConversionPhase::processingAudio, [&called] { called = true; });
        tracker.updateProgress(0.35);
        clock.advance(2);
        tracker.stopTracking(QStringLiteral("Audio reader failed"));
        QCOMPARE(tracker.statusMessage(), QStringLiteral("❌ Audio reader failed"));
        QCOMPARE(tracker.isActive(), false);
        QCOMPARE(tracker.heartbeatActive(), false);
        QCOMPARE(tracker.hasCancellationCallback(), false);
        QCOMPARE(tracker.cancellationRequested(), true);
        ConversionMetrics metrics = tracker.detailedMetrics();
        QCOMPARE(metrics.isFailed, true);
        QCOMPARE(metrics.isCompleted, false);
        QCOMPARE(metrics.errorMessage,
                 std::optional<QString>(QStringLiteral("Audio reader failed")));
        QCOMPARE(metrics.endTime, std::optional<QDateTime>(clock.now()));
        QVERIFY(tracker.progress() == 0.35);

        clock.advance(1);
        tracker.stopTracking();
        QCOMPARE(tracker.statusMessage(), QStringLiteral("❌ Audio reader failed"));
        QVERIFY(tracker.detailedMetrics() == metrics);
        QVERIFY(tracker.progress() == 0.35);
        QCOMPARE(called, false);
    }

    void cancellationWithoutCallbackEndsAtTheNextHeartbeat()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        tracker.startTracking(ConversionPhase::processingVideo);
        tracker.updateProgress(0.4, QStringLiteral("(1/2) Converting a.mov..."));
        tracker.requestCancellation();
        QCOMPARE(tracker.statusMessage(), QStringLiteral("⏹️ Cancellation requested..."));
        QCOMPARE(tracker.cancellationRequested(), true);
        QCOMPARE(tracker.isActive(), true);

        QSignalSpy beats(&tracker, &EnhancedProgressTracker::heartbeatActiveChanged);
        tracker.heartbeatTimerFired();
        QCOMPARE(beats.count(), 2); // inverted by the tick, then cleared by the stop
        QCOMPARE(beats.at(0).at(0).toBool(), false);
        QCOMPARE(tracker.isActive(), false);
        QCOMPARE(tracker.statusMessage(), QStringLiteral("❌ Conversion cancelled by user"));
        QCOMPARE(tracker.detailedMetrics().isFailed, true);
        QCOMPARE(tracker.detailedMetrics().errorMessage,
                 std::optional<QString>(QStringLiteral("Conversion cancelled by user")));
        QVERIFY(tracker.heartbeatTimer() == nullptr);
    }

    void cancellationCallsTheCallbackAndKeepsIt()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        int calls = 0;
        tracker.startTracking(ConversionPhase::loading, [&calls] { ++calls; });
        tracker.requestCancellation();
        QCOMPARE(calls, 1);
        QCOMPARE(tracker.hasCancellationCallback(), true);
        tracker.requestCancellation();
        QCOMPARE(calls, 2);
        tracker.heartbeatTimerFired();
        QCOMPARE(tracker.hasCancellationCallback(), false);
        tracker.requestCancellation(); // after the end: text only
        QCOMPARE(calls, 2);
        QCOMPARE(tracker.statusMessage(), QStringLiteral("⏹️ Cancellation requested..."));

        // A new start clears the request and replaces the callback.
        tracker.startTracking(ConversionPhase::loading);
        QCOMPARE(tracker.cancellationRequested(), false);
        QCOMPARE(tracker.hasCancellationCallback(), false);
    }

    void readyStatusIsReplacedByTheHeartbeatDot()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        tracker.startTracking(ConversionPhase::initializing);
        tracker.updateProgress(0.1, QStringLiteral("Ready"));
        QCOMPARE(tracker.heartbeatActive(), true);
        tracker.heartbeatTimerFired();
        QCOMPARE(tracker.heartbeatActive(), false);
        QCOMPARE(tracker.statusMessage(), QStringLiteral("○ Initializing..."));
        tracker.heartbeatTimerFired(); // any other text stays
        QCOMPARE(tracker.heartbeatActive(), true);
        QCOMPARE(tracker.statusMessage(), QStringLiteral("○ Initializing..."));

        tracker.updateProgress(0.2, QString());
        QCOMPARE(tracker.heartbeatActive(), true);
        tracker.heartbeatTimerFired();
        QCOMPARE(tracker.statusMessage(), QStringLiteral("○ Initializing..."));

        EnhancedProgressTracker other;
        other.startTracking(ConversionPhase::initializing);
        other.completeTracking(QStringLiteral("Ready")); // the dot is off here
        QCOMPARE(other.heartbeatActive(), false);
        other.heartbeatTimerFired();
        QCOMPARE(other.heartbeatActive(), true);
        QCOMPARE(other.statusMessage(), QStringLiteral("● Completed..."));
    }

    void heartbeatTogglesOnlyWhileActive()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        tracker.heartbeatTimerFired();
        tracker.progressTimerFired();
        QCOMPARE(tracker.heartbeatActive(), false);
        QVERIFY(tracker.detailedMetrics() == ConversionMetrics{});

        tracker.startTracking(ConversionPhase::initializing);
        tracker.heartbeatTimerFired();
        QCOMPARE(tracker.heartbeatActive(), true);
        QCOMPARE(tracker.statusMessage(), QStringLiteral("Starting initializing..."));
        tracker.heartbeatTimerFired();
        QCOMPARE(tracker.heartbeatActive(), false);

        tracker.stopTracking();
        clock.advance(30);
        tracker.heartbeatTimerFired();
        tracker.progressTimerFired();
        QCOMPARE(tracker.heartbeatActive(), false);
        QCOMPARE(tracker.statusMessage(), QStringLiteral("Starting initializing..."));
        QVERIFY(!tracker.detailedMetrics().lastUpdateTime);
    }

    void conversionCallingOrderEndsInCleanUpStop()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        QSignalSpy activity(&tracker, &EnhancedProgressTracker::isActiveChanged);
        tracker.startTracking(ConversionPhase::initializing);
        tracker.updateProgress(0.0, QStringLiteral("Validating input file..."),
                               ConversionPhase::initializing);
        clock.advance(0.5);
        tracker.updateProgress(0.05, QStringLiteral("Input validation complete"),
                               ConversionPhase::loading);
        clock.advance(0.5);
        tracker.updateProgress(0.3 + 0.6 * 0.5, QStringLiteral("Processing audio... (50%)"),
                               ConversionPhase::processingAudio);
        clock.advance(0.5);
        tracker.updateProgress(1.0, QStringLiteral("Audio conversion completed successfully"),
                               ConversionPhase::completed);
        tracker.completeTracking(QStringLiteral("✅ Audio conversion completed successfully"));
        tracker.stopTracking(); // the engine's clean-up on its way out
        QCOMPARE(tracker.isActive(), false);
        QCOMPARE(tracker.statusMessage(),
                 QStringLiteral("✅ Audio conversion completed successfully"));
        const ConversionMetrics metrics = tracker.detailedMetrics();
        QCOMPARE(metrics.progressUpdates, qint64(4));
        QCOMPARE(metrics.isCompleted, true);
        QCOMPARE(metrics.isFailed, false);
        QCOMPARE(metrics.elapsedTime(), 1.5);

        clock.advance(1); // the delayed stop of the completion finds nothing left to do
        QCOMPARE(tracker.isActive(), false);
        QCOMPARE(tracker.statusMessage(),
                 QStringLiteral("✅ Audio conversion completed successfully"));
        QCOMPARE(activity.count(), 3);
        QCOMPARE(activity.at(0).at(0).toBool(), true);
        QCOMPARE(activity.at(1).at(0).toBool(), false);
        QCOMPARE(activity.at(2).at(0).toBool(), false);
    }

    void metricsCarryOverOnAReusedTracker()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        tracker.startTracking(ConversionPhase::initializing);
        tracker.updateProgress(0.5);
        const QDateTime firstStart = clock.now();
        tracker.stopTracking(QStringLiteral("Conversion failed"));
        clock.advance(10);

        tracker.startTracking(ConversionPhase::loading);
        QCOMPARE(tracker.statusMessage(), QStringLiteral("Starting loading file..."));
        QVERIFY(tracker.progress() == 0.0);
        ConversionMetrics metrics = tracker.detailedMetrics();
        QCOMPARE(metrics.startTime, std::optional<QDateTime>(firstStart));
        QCOMPARE(metrics.isFailed, true);
        QCOMPARE(metrics.errorMessage, std::optional<QString>(QStringLiteral("Conversion failed")));
        QCOMPARE(metrics.progressUpdates, qint64(1));

        tracker.updateProgress(0.2);
        metrics = tracker.detailedMetrics();
        QCOMPARE(metrics.startTime, std::optional<QDateTime>(firstStart));
        QCOMPARE(metrics.progressUpdates, qint64(2));
        QCOMPARE(metrics.averageProgressRate, 0.2 / 10.0);
        QCOMPARE(metrics.isFailed, true);

        tracker.completeTracking(QStringLiteral("✅ Conversion completed successfully!"));
        metrics = tracker.detailedMetrics();
        QCOMPARE(metrics.isFailed, false);
        QCOMPARE(metrics.isCompleted, true);
        QCOMPARE(metrics.errorMessage, std::optional<QString>(QStringLiteral("Conversion failed")));
    }

    void aSecondStartLeavesTheOldTimersRunning()
    {
        ManualProgressClock clock;
        EnhancedProgressTracker tracker;
        tracker.startTracking(ConversionPhase::initializing);
        const QPointer<const QTimer> oldHeartbeat = tracker.heartbeatTimer();
        tracker.startTracking(ConversionPhase::loading);
        QVERIFY(tracker.heartbeatTimer() != oldHeartbeat.data());
        QVERIFY(oldHeartbeat && oldHeartbeat->isActive());
        tracker.stopTracking();
        QVERIFY(tracker.heartbeatTimer() == nullptr);
        QVERIFY(oldHeartbeat && oldHeartbeat->isActive());
    }

    void theRealTimersTickAtTheirPeriods()
    {
        // Wall clock: the heartbeat inverts the dot about four times a second.
        EnhancedProgressTracker tracker;
        QSignalSpy beats(&tracker, &EnhancedProgressTracker::heartbeatActiveChanged);
        QSignalSpy metrics(&tracker, &EnhancedProgressTracker::detailedMetricsChanged);
        tracker.startTracking(ConversionPhase::initializing);
        QTRY_VERIFY_WITH_TIMEOUT(beats.count() >= 2, 5000);
        QVERIFY(metrics.count() >= 2); // the stagnation check stamps the metrics each 0.1 s
        QCOMPARE(tracker.statusMessage(), QStringLiteral("Starting initializing..."));
        tracker.stopTracking();
    }
};

QTEST_GUILESS_MAIN(TestEnhancedProgressTracker)
#include "tst_enhancedprogresstracker.moc"
