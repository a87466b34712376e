// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/batch/BatchProgressManager.h"

#include "ConversionEngine/memory/MemoryManager.h"
#include "ConversionEngine/progress/ProgressClock.h"

#include <QLoggingCategory>
#include <QTimer>

#include <cmath>

namespace Ondrilet {

using ConversionEngine::ProgressClock;

namespace {

Q_LOGGING_CATEGORY(batchProgressLog, "Ondrilet.BatchProgress")

constexpr double bytesToMebibytes = 9.5367431640625e-07;

// `seconds` after `from`; a span beyond any date (a fraction near zero early on) gives no date
// rather than an overflow.
std::optional<QDateTime> later(const QDateTime& from, double seconds)
{
    const double milliseconds = std::round(seconds * 1000.0);
    if (!std::isfinite(milliseconds) || std::fabs(milliseconds) > 1e15)
        return std::nullopt;
    return from.addMSecs(static_cast<qint64>(milliseconds));
}

} // namespace

BatchProgressManager::BatchProgressManager(ConversionEngine::MemoryManager* memoryManager,
                                           QObject* parent)
    : QObject(parent)
    , m_memoryManager(memoryManager ? memoryManager
                                    : new ConversionEngine::MemoryManager(50, 20, this))
{
    startProgressTimer();
}

void BatchProgressManager::setShowPerformanceMetrics(bool show)
{
    m_showPerformanceMetrics = show;
    emit showPerformanceMetricsChanged(show);
}

void BatchProgressManager::startBatch(const QStringList& files)
{
    m_fileProgresses.clear();
    for (const QString& file : files)
        m_fileProgresses.append(FileConversionProgress(file));
    m_batchStats = BatchConversionStats{};
    m_batchStats.totalFiles = files.size();
    m_batchStats.startTime = ProgressClock::current().now();
    for (const QString& file : files)
        m_batchStats.totalInputSize += FileConversionProgress::sizeOf(file).value_or(0);
    publishFiles();
    publishStats();
    setCanPause(true);
    setCanResume(false);
    setIsPaused(false);
    qCInfo(batchProgressLog, "Started batch conversion with %ld files",
           static_cast<long>(files.size()));
}

void BatchProgressManager::updateFileProgress(const QString& inputFile,
                                              ConversionEngine::ConversionPhase phase,
                                              double progress)
{
    const qsizetype index = indexOf(inputFile);
    if (index < 0)
        return;
    FileConversionProgress& file = m_fileProgresses[index];
    file.progress = progress; // as given: the driver's fractions are not cleaned here
    file.status = FileConversionStatus::processing(phase);
    if (!file.startTime)
        file.startTime = ProgressClock::current().now();
    updateBatchStats();
    updateFileMetrics(index);
    publishFiles();
}

void BatchProgressManager::completeFile(const QString& inputFile, const QString& outputFile)
{
    const qsizetype index = indexOf(inputFile);
    if (index < 0)
        return;
    FileConversionProgress& file = m_fileProgresses[index];
    file.status = FileConversionStatus::completed(outputFile);
    file.progress = 1.0;
    file.endTime = ProgressClock::current().now();
    file.outputFile = outputFile;
    if (const auto size = FileConversionProgress::sizeOf(outputFile))
        file.outputSize = *size;
    m_batchStats.completedFiles += 1;
    updateBatchStats();
    publishFiles();
    qCInfo(batchProgressLog, "Completed file: %s", qUtf8Printable(file.fileName()));
}

void BatchProgressManager::failFile(const QString& inputFile, const QString& error)
{
    const qsizetype index = indexOf(inputFile);
    if (index < 0)
        return;
    FileConversionProgress& file = m_fileProgresses[index];
    file.status = FileConversionStatus::failed(error);
    file.endTime = ProgressClock::current().now();
    // The fraction stays where it was, so a failed file keeps the total below 1 for good.
    m_batchStats.failedFiles += 1;
    updateBatchStats();
    publishFiles();
    qCCritical(batchProgressLog, "Failed file: %s - %s", qUtf8Printable(file.fileName()),
               qUtf8Printable(error));
}

void BatchProgressManager::pauseBatch()
{
    setIsPaused(true);
    setCanPause(false);
    setCanResume(true);
    qCInfo(batchProgressLog, "Batch conversion paused");
}

void BatchProgressManager::resumeBatch()
{
    setIsPaused(false);
    setCanPause(true);
    setCanResume(false);
    qCInfo(batchProgressLog, "Batch conversion resumed");
}

void BatchProgressManager::finishBatch()
{
    setCanPause(false);
    setCanResume(false);
    // Nothing restarts the timer, so the memory figures freeze at the end of the first batch.
    if (m_progressUpdateTimer) {
        m_progressUpdateTimer->stop();
        m_progressUpdateTimer->deleteLater();
        m_progressUpdateTimer = nullptr;
    }
    m_batchStats.estimatedEndTime = ProgressClock::current().now();
    publishStats();
    qCInfo(batchProgressLog, "Batch conversion completed - %ld/%ld files",
           static_cast<long>(m_batchStats.completedFiles),
           static_cast<long>(m_batchStats.totalFiles));
}

double BatchProgressManager::compressionRatio() const
{
    if (m_batchStats.totalInputSize < 1)
        return 0;
    return static_cast<double>(m_batchStats.totalOutputSize) /
           static_cast<double>(m_batchStats.totalInputSize) * 100.0;
}

void BatchProgressManager::progressTimerFired()
{
    setMemoryStats(m_memoryManager->getMemoryStats());
}

void BatchProgressManager::startProgressTimer()
{
    m_progressUpdateTimer = new QTimer(this);
    m_progressUpdateTimer->setInterval(
        static_cast<int>(std::lround(progressUpdateIntervalSeconds * 1000.0)));
    connect(m_progressUpdateTimer, &QTimer::timeout, this, [this] {
        QMetaObject::invokeMethod(this, &BatchProgressManager::progressTimerFired,
                                  Qt::QueuedConnection);
    });
    m_progressUpdateTimer->start();
}

void BatchProgressManager::updateBatchStats()
{
    BatchConversionStats& stats = m_batchStats;
    // Callers always have a record, so the division is never by zero.
    double progressSum = 0;
    std::int64_t outputSum = 0;
    double speedSum = 0;
    int processing = 0;
    for (const FileConversionProgress& file : m_fileProgresses) {
        progressSum += file.progress;
        outputSum += file.outputSize;
        if (file.isProcessing()) {
            speedSum += file.processingSpeed;
            ++processing;
        }
    }
    stats.totalProgress = progressSum / static_cast<double>(m_fileProgresses.size());
    stats.totalOutputSize = outputSum;
    stats.averageProcessingSpeed = processing > 0 ? speedSum / processing : 0;
    if (stats.totalProgress > 0) {
        const QDateTime now = ProgressClock::current().now();
        const double elapsed = ProgressClock::secondsBetween(stats.startTime.value_or(now), now);
        stats.overallTimeRemaining = elapsed / stats.totalProgress - elapsed;
        stats.estimatedEndTime = later(now, *stats.overallTimeRemaining);
    }
    publishStats();
}

void BatchProgressManager::updateFileMetrics(qsizetype index)
{
    if (index < 0 || index >= m_fileProgresses.size())
        return;
    FileConversionProgress& file = m_fileProgresses[index];
    if (!file.startTime || !(file.progress > 0))
        return;
    const double elapsed =
        ProgressClock::secondsBetween(*file.startTime, ProgressClock::current().now());
    const double fraction = file.progress;
    file.timeRemaining = elapsed / fraction - elapsed;
    file.processingSpeed =
        fraction * static_cast<double>(file.inputSize()) / elapsed * bytesToMebibytes;
}

qsizetype BatchProgressManager::indexOf(const QString& inputFile) const
{
    for (qsizetype i = 0; i < m_fileProgresses.size(); ++i)
        if (m_fileProgresses[i].inputFile == inputFile)
            return i;
    return -1;
}

void BatchProgressManager::publishFiles()
{
    emit fileProgressesChanged(m_fileProgresses);
}

void BatchProgressManager::publishStats()
{
    emit batchStatsChanged(m_batchStats);
}

void BatchProgressManager::setMemoryStats(const ConversionEngine::MemoryStats& stats)
{
    m_memoryStats = stats;
    emit memoryStatsChanged(stats);
}

void BatchProgressManager::setIsPaused(bool value)
{
    m_isPaused = value;
    emit isPausedChanged(value);
}

void BatchProgressManager::setCanPause(bool value)
{
    m_canPause = value;
    emit canPauseChanged(value);
}

void BatchProgressManager::setCanResume(bool value)
{
    m_canResume = value;
    emit canResumeChanged(value);
}

} // namespace Ondrilet
