// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/progress/EnhancedProgressTracker.h"

#include "ConversionEngine/progress/ProgressClock.h"

#include <QTimer>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace ConversionEngine {

namespace {

// Truncates toward zero; a value without a 64-bit whole-number reading ends the process, as an
// unchecked conversion would be undefined.
std::int64_t wholeNumber(double value, const char* what)
{
    const double truncated = std::trunc(value);
    if (!std::isfinite(truncated) || truncated >= 9223372036854775808.0 ||
        truncated < -9223372036854775808.0)
        qFatal("%s cannot be a whole number: %f", what, value);
    return static_cast<std::int64_t>(truncated);
}

} // namespace

QString statusText(ConversionPhase phase, double progress)
{
    const std::int64_t percent = wholeNumber(progress * 100.0, "Progress percentage");
    const auto withPercent = [percent](const QString& text) {
        return text + QStringLiteral(" (%1%)").arg(percent);
    };
    switch (phase) {
    case ConversionPhase::initializing:
        return QStringLiteral("Initializing conversion engine...");
    case ConversionPhase::loading:
        return QStringLiteral("Loading and analyzing media file...");
    case ConversionPhase::analyzing:
        return QStringLiteral("Analyzing media properties and format...");
    case ConversionPhase::configuring:
        return QStringLiteral("Configuring conversion settings...");
    case ConversionPhase::processingVideo:
        return withPercent(QStringLiteral("Processing video stream..."));
    case ConversionPhase::encodingFrames:
        return withPercent(QStringLiteral("Encoding video frames..."));
    case ConversionPhase::processingAudio:
        return withPercent(QStringLiteral("Processing audio stream..."));
    case ConversionPhase::finalizing:
        return withPercent(QStringLiteral("Finalizing conversion..."));
    case ConversionPhase::writing:
        return withPercent(QStringLiteral("Writing output file..."));
    case ConversionPhase::verifying:
        return QStringLiteral("Verifying output file integrity...");
    case ConversionPhase::completed:
        return QStringLiteral("✅ Conversion completed successfully!");
    }
    return {};
}

QString stagnationMessage(double seconds)
{
    const std::int64_t whole = wholeNumber(seconds, "Stall duration");
    if (whole < 10)
        return QStringLiteral("Processing... (analyzing complex media)");
    if (whole < 30)
        return QStringLiteral("Processing... (handling large file section)");
    if (whole < 60)
        return QStringLiteral("Processing... (encoding complex video segment)");
    return QStringLiteral("Processing... (working on challenging media section)");
}

EnhancedProgressTracker::EnhancedProgressTracker(QObject* parent)
    : QObject(parent)
    , m_lastProgressUpdate(ProgressClock::current().now())
{}

void EnhancedProgressTracker::startTracking(ConversionPhase phase,
                                            CancellationCallback cancellationCallback)
{
    setIsActive(true);
    setCurrentPhase(phase);
    setProgress(0);
    m_lastProgressUpdate = ProgressClock::current().now();
    m_lastProgressValue = 0;
    m_cancellationRequested = false;
    m_cancellationCallback = std::move(cancellationCallback);
    startHeartbeat();
    startProgressTimer();
    setStatusMessage(QStringLiteral("Starting ") + rawValue(phase).toLower() +
                     QStringLiteral("..."));
}

void EnhancedProgressTracker::updateProgress(double progress, const std::optional<QString>& message,
                                             std::optional<ConversionPhase> phase)
{
    const double fraction = cleanedFraction(progress);
    setProgress(fraction);
    m_lastProgressValue = fraction;
    m_lastProgressUpdate = ProgressClock::current().now();
    if (phase)
        setCurrentPhase(*phase);
    setStatusMessage(message ? *message : statusText(m_currentPhase, fraction));
    recordUpdate(m_currentPhase, fraction);
    setHeartbeatActive(true);
}

void EnhancedProgressTracker::completeTracking(const QString& message)
{
    setProgress(1.0);
    setStatusMessage(message);
    setCurrentPhase(ConversionPhase::completed);
    m_detailedMetrics.endTime = ProgressClock::current().now();
    m_detailedMetrics.isCompleted = true;
    m_detailedMetrics.isFailed = false;
    publishMetrics();
    // The timers run on for this second and the tracker stays active, so the finished state shows.
    ProgressClock::current().runAfter(1.0, this, [this] { stopTracking(); });
}

void EnhancedProgressTracker::stopTracking(const std::optional<QString>& error)
{
    setIsActive(false);
    setHeartbeatActive(false);
    releaseTimer(m_heartbeatTimer);
    releaseTimer(m_progressTimer);
    // Set on every stop, the normal end included; only the next start clears it.
    m_cancellationRequested = true;
    m_cancellationCallback = nullptr;
    if (!error)
        return;
    setStatusMessage(QStringLiteral("❌ ") + *error);
    m_detailedMetrics.endTime = ProgressClock::current().now();
    m_detailedMetrics.isCompleted = false;
    m_detailedMetrics.isFailed = true;
    m_detailedMetrics.errorMessage = *error;
    publishMetrics();
}

void EnhancedProgressTracker::requestCancellation()
{
    m_cancellationRequested = true;
    setStatusMessage(QStringLiteral("⏹️ Cancellation requested..."));
    if (m_cancellationCallback) {
        // A copy, in case the callback starts or stops tracking and so replaces the stored one.
        const CancellationCallback callback = m_cancellationCallback;
        callback();
    }
}

void EnhancedProgressTracker::heartbeatTimerFired()
{
    if (!m_isActive)
        return;
    setHeartbeatActive(!m_heartbeatActive);
    if (m_cancellationRequested)
        stopTracking(QStringLiteral("Conversion cancelled by user"));
    else
        updateHeartbeatStatus();
}

void EnhancedProgressTracker::progressTimerFired()
{
    if (!m_isActive)
        return;
    checkForStagnation();
}

void EnhancedProgressTracker::startHeartbeat()
{
    m_heartbeatTimer =
        makeRepeatingTimer(heartbeatInterval, &EnhancedProgressTracker::heartbeatTimerFired);
}

void EnhancedProgressTracker::startProgressTimer()
{
    m_progressTimer =
        makeRepeatingTimer(progressUpdateInterval, &EnhancedProgressTracker::progressTimerFired);
}

void EnhancedProgressTracker::checkForStagnation()
{
    const QDateTime now = ProgressClock::current().now();
    const double stalledSeconds = ProgressClock::secondsBetween(m_lastProgressUpdate, now);
    if (stagnationThreshold < stalledSeconds)
        handleStagnation(stalledSeconds);
    m_detailedMetrics.lastUpdateTime = now;
    publishMetrics();
}

void EnhancedProgressTracker::handleStagnation(double stalledSeconds)
{
    if (m_progress >= 1.0)
        return;
    setStatusMessage(stagnationMessage(stalledSeconds));
    // The last update time is left alone, so every tick of one stall counts again with the whole
    // gap: the totals count ticks, not stalls.
    m_detailedMetrics.totalStagnationTime += stalledSeconds;
    m_detailedMetrics.stagnationEvents += 1;
}

void EnhancedProgressTracker::updateHeartbeatStatus()
{
    if (!m_statusMessage.isEmpty() && m_statusMessage != QStringLiteral("Ready"))
        return;
    const QString dot = m_heartbeatActive ? QStringLiteral("●") : QStringLiteral("○");
    setStatusMessage(dot + QStringLiteral(" ") + rawValue(m_currentPhase) + QStringLiteral("..."));
}

double EnhancedProgressTracker::cleanedFraction(double value) const
{
    if (!m_progressValidationEnabled)
        return value;
    double clamped = std::isnan(value) ? 1.0 : std::min(value, 1.0);
    if (!(clamped >= 0))
        clamped = 0;
    const double last = m_lastProgressValue;
    if (clamped < last && last - clamped < 0.1)
        return last; // small backward steps are jitter
    if (clamped > last)
        return clamped - last < minimumProgressIncrement ? last + minimumProgressIncrement
                                                         : clamped;
    return clamped; // equal, or a large step back that is believed
}

void EnhancedProgressTracker::recordUpdate(ConversionPhase phase, double fraction)
{
    const QDateTime now = ProgressClock::current().now();
    ConversionMetrics& metrics = m_detailedMetrics;
    if (!metrics.startTime)
        metrics.startTime = now;
    if (rawValue(phase) != rawValue(metrics.currentPhase)) {
        metrics.currentPhase = phase;
        metrics.phaseStartTime = now;
    }
    metrics.lastUpdateTime = now;
    metrics.progressUpdates += 1;
    const double elapsed = ProgressClock::secondsBetween(*metrics.startTime, now);
    if (elapsed > 0)
        metrics.averageProgressRate = fraction / elapsed;
    publishMetrics();
}

QTimer* EnhancedProgressTracker::makeRepeatingTimer(double intervalSeconds,
                                                    void (EnhancedProgressTracker::*target)())
{
    // A timer replaced by a second start is not stopped: it stays a child and keeps ticking, and
    // the isActive guard of the targets keeps its ticks harmless.
    auto* timer = new QTimer(this);
    timer->setInterval(static_cast<int>(std::lround(intervalSeconds * 1000.0)));
    connect(timer, &QTimer::timeout, this,
            [this, target] { QMetaObject::invokeMethod(this, target, Qt::QueuedConnection); });
    timer->start();
    return timer;
}

void EnhancedProgressTracker::releaseTimer(QTimer*& timer)
{
    if (!timer)
        return;
    timer->stop();
    timer->deleteLater();
    timer = nullptr;
}

void EnhancedProgressTracker::setProgress(double value)
{
    m_progress = value;
    emit progressChanged(value);
}

void EnhancedProgressTracker::setStatusMessage(const QString& value)
{
    m_statusMessage = value;
    emit statusMessageChanged(value);
}

void EnhancedProgressTracker::setIsActive(bool value)
{
    m_isActive = value;
    emit isActiveChanged(value);
}

void EnhancedProgressTracker::setCurrentPhase(ConversionPhase value)
{
    m_currentPhase = value;
    emit currentPhaseChanged(value);
}

void EnhancedProgressTracker::setHeartbeatActive(bool value)
{
    m_heartbeatActive = value;
    emit heartbeatActiveChanged(value);
}

void EnhancedProgressTracker::publishMetrics()
{
    emit detailedMetricsChanged(m_detailedMetrics);
}

} // namespace ConversionEngine
