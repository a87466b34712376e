// SPDX-License-Identifier: GPL-3.0-or-later
// The observable state of one running conversion (or of a whole run): a cleaned fraction, a status
// text, the phase, a pulsing heartbeat, a reassurance when progress stalls, and a metrics record.
// It decides nothing about the conversion, except that a cancellation asked of it ends the
// tracking. Main thread only: engine threads hop to the main thread before calling it.
#pragma once

#include "ConversionEngine/progress/ConversionMetrics.h"
#include "ConversionEngine/progress/ConversionPhase.h"

#include <QDateTime>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

class QTimer;

namespace ConversionEngine {

// The default status text of a phase at a fraction; N in the texts is the fraction × 100 truncated
// toward zero. A fraction that is not finite or whose percentage does not fit a 64-bit whole number
// is a programming error and ends the process.
QString statusText(ConversionPhase phase, double progress);

// The reassurance shown while no progress arrives, chosen by the whole seconds of the stall.
// A non-finite or unrepresentable value is a programming error and ends the process.
QString stagnationMessage(double seconds);

class EnhancedProgressTracker : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    Q_PROPERTY(bool isActive READ isActive NOTIFY isActiveChanged)
    Q_PROPERTY(
        ConversionEngine::ConversionPhase currentPhase READ currentPhase NOTIFY currentPhaseChanged)
    Q_PROPERTY(bool heartbeatActive READ heartbeatActive NOTIFY heartbeatActiveChanged)
    Q_PROPERTY(ConversionEngine::ConversionMetrics detailedMetrics READ detailedMetrics NOTIFY
                   detailedMetricsChanged)

public:
    using CancellationCallback = std::function<void()>;

    // Fixed settings; nothing in the program changes them.
    static constexpr double stagnationThreshold = 5.0;    // seconds
    static constexpr double heartbeatInterval = 0.25;     // seconds
    static constexpr double progressUpdateInterval = 0.1; // seconds, the stagnation check
    static constexpr double minimumProgressIncrement = 0.001;

    explicit EnhancedProgressTracker(QObject* parent = nullptr);

    double progress() const { return m_progress; }
    QString statusMessage() const { return m_statusMessage; }
    bool isActive() const { return m_isActive; }
    ConversionPhase currentPhase() const { return m_currentPhase; }
    bool heartbeatActive() const { return m_heartbeatActive; }
    ConversionMetrics detailedMetrics() const { return m_detailedMetrics; }

    QDateTime lastProgressUpdate() const { return m_lastProgressUpdate; }
    double lastProgressValue() const { return m_lastProgressValue; }
    bool cancellationRequested() const { return m_cancellationRequested; }
    bool hasCancellationCallback() const { return static_cast<bool>(m_cancellationCallback); }
    // The running timers, or null when there are none.
    const QTimer* heartbeatTimer() const { return m_heartbeatTimer; }
    const QTimer* progressTimer() const { return m_progressTimer; }

    // Cleaning of fractions is on in the program; switching it off passes values through as given.
    bool progressValidationEnabled() const { return m_progressValidationEnabled; }
    void setProgressValidationEnabled(bool enabled) { m_progressValidationEnabled = enabled; }

    // Begins tracking at `phase`. The metrics are deliberately kept from any earlier conversion.
    // Held by tst_enhancedprogresstracker::metricsCarryOverOnAReusedTracker.
    void startTracking(ConversionPhase phase, CancellationCallback cancellationCallback = {});
    // Accepts any number: it is cleaned first. Without a message the phase's default text shows.
    void updateProgress(double progress, const std::optional<QString>& message = std::nullopt,
                        std::optional<ConversionPhase> phase = std::nullopt);
    // Shows the finished state; tracking itself stops one second later.
    void completeTracking(const QString& message);
    // With an error text the conversion counts as failed; without one this only stops the timers
    // and leaves the texts and the metrics as they are (the engines' clean-up call).
    void stopTracking(const std::optional<QString>& error = std::nullopt);
    // Calls the owner's callback now; the next heartbeat ends the tracking as a failure.
    void requestCancellation();

    // Targets of the two timers (each tick arrives here through a queued call). Public so that
    // tests can stand in for the timers; the program never calls them otherwise.
    void heartbeatTimerFired();
    void progressTimerFired();

signals:
    void progressChanged(double progress);
    void statusMessageChanged(const QString& statusMessage);
    void isActiveChanged(bool isActive);
    void currentPhaseChanged(ConversionEngine::ConversionPhase currentPhase);
    void heartbeatActiveChanged(bool heartbeatActive);
    void detailedMetricsChanged(const ConversionEngine::ConversionMetrics& detailedMetrics);

private:
    void startHeartbeat();
    void startProgressTimer();
    void checkForStagnation();
    void handleStagnation(double stalledSeconds);
    void updateHeartbeatStatus();

    double cleanedFraction(double value) const;
    void recordUpdate(ConversionPhase phase, double fraction);
    QTimer* makeRepeatingTimer(double intervalSeconds, void (EnhancedProgressTracker::*target)());
    static void releaseTimer(QTimer*& timer);

    // Every assignment notifies, even of an equal value, so that whoever mirrors these sees each
    // report as it was made.
    void setProgress(double value);
    void setStatusMessage(const QString& value);
    void setIsActive(bool value);
    void setCurrentPhase(ConversionPhase value);
    void setHeartbeatActive(bool value);
    void publishMetrics();

    double m_progress = 0;
    QString m_statusMessage = QStringLiteral("Ready");
    bool m_isActive = false;
    ConversionPhase m_currentPhase = ConversionPhase::initializing;
    bool m_heartbeatActive = false;
    ConversionMetrics m_detailedMetrics;
    QTimer* m_heartbeatTimer = nullptr;
    QTimer* m_progressTimer = nullptr;
    QDateTime m_lastProgressUpdate;
    double m_lastProgressValue = 0;
    bool m_progressValidationEnabled = true;
    bool m_cancellationRequested = false;
    CancellationCallback m_cancellationCallback;
};

} // namespace ConversionEngine
