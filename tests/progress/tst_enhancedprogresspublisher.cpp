// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/progress/EnhancedProgressPublisher.h"
#include "tests/support/ManualProgressClock.h"

#include <QCoreApplication>
#include <QTest>

#include <memory>

using ConversionEngine::ConversionPhase;
using ConversionEngine::EnhancedProgressPublisher;
using ConversionEngine::EnhancedProgressTracker;
using TestSupport::ManualProgressClock;

namespace {

// Runs the queued deliveries from the trackers to the publisher.
void deliver()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
}

std::shared_ptr<EnhancedProgressTracker> trackerAt(double fraction)
{
    auto tracker = std::make_shared<EnhancedProgressTracker>();
    tracker->updateProgress(fraction, QStringLiteral("at %1").arg(fraction));
    return tracker;
}

} // namespace

class TestEnhancedProgressPublisher : public QObject
{
    Q_OBJECT

private slots:
    void newPublisherIsReady()
    {
        EnhancedProgressPublisher publisher;
        QCOMPARE(publisher.combinedProgress(), 0.0);
        QCOMPARE(publisher.combinedStatus(), QStringLiteral("Ready"));
        QCOMPARE(publisher.isActive(), false);
        QCOMPARE(publisher.heartbeatVisible(), false);
        QCOMPARE(publisher.subscriptionCount(), 0);
    }

    void progressIsWeighted()
    {
        ManualProgressClock clock;
        EnhancedProgressPublisher publisher;
        publisher.addTracker(trackerAt(0.5), QStringLiteral("video"), 3);
        publisher.addTracker(trackerAt(1.0), QStringLiteral("audio"), 1);
        QCOMPARE(publisher.combinedProgress(), 0.0); // deliveries are queued
        deliver();
        QVERIFY(publisher.combinedProgress() == 0.625);
        QCOMPARE(publisher.subscriptionCount(), 8);
    }

    void weightsNeedNotAddUpToOne()
    {
        ManualProgressClock clock;
        EnhancedProgressPublisher publisher;
        publisher.addTracker(trackerAt(1.0), QStringLiteral("a"), 2);
        publisher.addTracker(trackerAt(0.5), QStringLiteral("b"), -1);
        deliver();
        QVERIFY(publisher.combinedProgress() == 1.5);
    }

    void aZeroTotalWeightGivesZero()
    {
        ManualProgressClock clock;
        EnhancedProgressPublisher publisher;
        const auto tracker = trackerAt(0.8);
        publisher.addTracker(tracker, QStringLiteral("only"), 0);
        deliver();
        QCOMPARE(publisher.combinedProgress(), 0.0);
        tracker->updateProgress(1.0);
        deliver();
        QCOMPARE(publisher.combinedProgress(), 0.0);
    }

    void statusAndHeartbeatComeFromWhicheverTrackerSpokeLast()
    {
        ManualProgressClock clock;
        EnhancedProgressPublisher publisher;
        const auto first = std::make_shared<EnhancedProgressTracker>();
        const auto second = std::make_shared<EnhancedProgressTracker>();
        publisher.addTracker(first, QStringLiteral("first"), 1);
        publisher.addTracker(second, QStringLiteral("second"), 1);
        deliver();
        QCOMPARE(publisher.combinedStatus(), QStringLiteral("Ready"));
        QCOMPARE(publisher.isActive(), false);

        first->startTracking(ConversionPhase::loading);
        second->updateProgress(0.5, QStringLiteral("Encoding..."));
        QCOMPARE(publisher.combinedStatus(), QStringLiteral("Ready"));
        deliver();
        QCOMPARE(publisher.combinedStatus(), QStringLiteral("Encoding..."));
        QCOMPARE(publisher.heartbeatVisible(), true);
        QCOMPARE(publisher.isActive(), true);
        QVERIFY(publisher.combinedProgress() == 0.25);

        // The same text again still counts as the last word.
        first->updateProgress(0.2, QStringLiteral("Loading..."));
        second->updateProgress(0.6, QStringLiteral("Encoding..."));
        first->heartbeatTimerFired(); // first's dot goes off last
        deliver();
        QCOMPARE(publisher.combinedStatus(), QStringLiteral("Encoding..."));
        QCOMPARE(publisher.heartbeatVisible(), false);

        first->stopTracking();
        deliver();
        QCOMPARE(publisher.isActive(), false);
    }

    void removingTheLastTrackerKeepsTheStatus()
    {
        ManualProgressClock clock;
        EnhancedProgressPublisher publisher;
        const auto tracker = std::make_shared<EnhancedProgressTracker>();
        publisher.addTracker(tracker, QStringLiteral("run"), 1);
        tracker->startTracking(ConversionPhase::processingVideo);
        tracker->updateProgress(0.4, QStringLiteral("(1/1) Converting a.mov..."));
        deliver();
        QVERIFY(publisher.combinedProgress() == 0.4);
        QCOMPARE(publisher.isActive(), true);

        publisher.removeTracker(QStringLiteral("run"));
        QCOMPARE(publisher.combinedProgress(), 0.0);
        QCOMPARE(publisher.isActive(), false);
        QCOMPARE(publisher.combinedStatus(), QStringLiteral("(1/1) Converting a.mov..."));
        QCOMPARE(publisher.subscriptionCount(), 4);

        // Its subscriptions stay: a later change still writes the status and recomputes.
        tracker->updateProgress(0.9, QStringLiteral("later"));
        deliver();
        QCOMPARE(publisher.combinedStatus(), QStringLiteral("later"));
        QCOMPARE(publisher.combinedProgress(), 0.0);
        QCOMPARE(publisher.isActive(), false);

        publisher.removeTracker(QStringLiteral("unknown"));
        QCOMPARE(publisher.combinedProgress(), 0.0);
    }

    void aSecondTrackerUnderAUsedKeyReplacesTheFirst()
    {
        ManualProgressClock clock;
        EnhancedProgressPublisher publisher;
        const auto old = trackerAt(0.2);
        publisher.addTracker(old, QStringLiteral("file"), 1);
        publisher.addTracker(trackerAt(0.8), QStringLiteral("file"), 2);
        deliver();
        QVERIFY(publisher.combinedProgress() == 0.8);

        old->updateProgress(0.25, QStringLiteral("old tracker speaks"));
        deliver();
        QCOMPARE(publisher.combinedStatus(), QStringLiteral("old tracker speaks"));
        QVERIFY(publisher.combinedProgress() == 0.8);
    }

    void clearingForgetsEveryTracker()
    {
        ManualProgressClock clock;
        EnhancedProgressPublisher publisher;
        const auto tracker = trackerAt(0.6);
        tracker->startTracking(ConversionPhase::writing);
        tracker->updateProgress(0.7);
        publisher.addTracker(tracker, QStringLiteral("a"), 1);
        deliver();
        QCOMPARE(publisher.isActive(), true);
        QCOMPARE(publisher.heartbeatVisible(), true);

        publisher.clearTrackers();
        QCOMPARE(publisher.combinedStatus(), QStringLiteral("Ready"));
        QCOMPARE(publisher.combinedProgress(), 0.0);
        QCOMPARE(publisher.isActive(), false);
        QCOMPARE(publisher.heartbeatVisible(), false);
        QCOMPARE(publisher.subscriptionCount(), 4);

        tracker->updateProgress(0.9);
        deliver();
        QCOMPARE(publisher.combinedProgress(), 0.0); // no tracker counts
        QCOMPARE(publisher.isActive(), false);

        publisher.addTracker(trackerAt(0.3), QStringLiteral("b"), 1);
        publisher.reset();
        deliver(); // deliveries queued before the reset still arrive
        QVERIFY(publisher.combinedProgress() == 0.0);
    }

    void deliveriesAfterThePublisherIsGoneAreDropped()
    {
        ManualProgressClock clock;
        const auto tracker = trackerAt(0.1);
        {
            EnhancedProgressPublisher publisher;
            publisher.addTracker(tracker, QStringLiteral("a"), 1);
            tracker->updateProgress(0.5);
        }
        tracker->updateProgress(0.6);
        deliver();
        QVERIFY(tracker->progress() == 0.6);
    }
};

QTEST_GUILESS_MAIN(TestEnhancedProgressPublisher)
#include "tst_enhancedprogresspublisher.moc"
