// SPDX-License-Identifier: GPL-3.0-or-later
// Keeps one record per input file of a batch and the batch's totals for the detailed batch
// window, plus a twice-a-second copy of the engine's buffer statistics. Pause and resume only
// change flags: the driver does not consult them. Main thread only.
#pragma once

#include "ConversionEngine/memory/MemoryStats.h"
#include "ConversionEngine/progress/ConversionPhase.h"
#include "app/batch/BatchConversionStats.h"
#include "app/batch/FileConversionProgress.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

class QTimer;

namespace ConversionEngine {
class MemoryManager;
}

namespace Ondrilet {

class BatchProgressManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<Ondrilet::FileConversionProgress> fileProgresses READ fileProgresses NOTIFY
                   fileProgressesChanged)
    Q_PROPERTY(Ondrilet::BatchConversionStats batchStats READ batchStats NOTIFY batchStatsChanged)
    Q_PROPERTY(ConversionEngine::MemoryStats memoryStats READ memoryStats NOTIFY memoryStatsChanged)
    Q_PROPERTY(bool isPaused READ isPaused NOTIFY isPausedChanged)
    Q_PROPERTY(bool canPause READ canPause NOTIFY canPauseChanged)
    Q_PROPERTY(bool canResume READ canResume NOTIFY canResumeChanged)
    Q_PROPERTY(bool showPerformanceMetrics READ showPerformanceMetrics WRITE
                   setShowPerformanceMetrics NOTIFY showPerformanceMetricsChanged)

public:
    static constexpr double progressUpdateIntervalSeconds = 0.5;

    // Without a manager it makes its own (pool 50, 20 active buffers). The memory statistics
    // timer starts here, once; finishBatch stops it for good.
    explicit BatchProgressManager(ConversionEngine::MemoryManager* memoryManager = nullptr,
                                  QObject* parent = nullptr);

    QList<FileConversionProgress> fileProgresses() const { return m_fileProgresses; }
    BatchConversionStats batchStats() const { return m_batchStats; }
    ConversionEngine::MemoryStats memoryStats() const { return m_memoryStats; }
    bool isPaused() const { return m_isPaused; }
    bool canPause() const { return m_canPause; }
    bool canResume() const { return m_canResume; }
    bool showPerformanceMetrics() const { return m_showPerformanceMetrics; }
    void setShowPerformanceMetrics(bool show);
    ConversionEngine::MemoryManager* memoryManager() const { return m_memoryManager; }

    // Files are identified by their path; a path not in the batch is ignored without a report.
    void startBatch(const QStringList& files);
    void updateFileProgress(const QString& inputFile, ConversionEngine::ConversionPhase phase,
                            double progress);
    void completeFile(const QString& inputFile, const QString& outputFile);
    void failFile(const QString& inputFile, const QString& error);
    void pauseBatch();
    void resumeBatch();
    void finishBatch();

    // The window's compression figure: output size as a percentage of the input (0 without
    // input). ProgressTexts writes it and the other figures ("%.1f%%", "%.1f MB/s", "%.1f MB").
    double compressionRatio() const;

    // The statistics timer, or null once the first batch has finished.
    const QTimer* progressUpdateTimer() const { return m_progressUpdateTimer; }
    // The timer's target (each tick arrives here through a queued call). Public so that tests
    // can stand in for the timer.
    void progressTimerFired();

signals:
    void fileProgressesChanged(const QList<Ondrilet::FileConversionProgress>& fileProgresses);
    void batchStatsChanged(const Ondrilet::BatchConversionStats& batchStats);
    void memoryStatsChanged(const ConversionEngine::MemoryStats& memoryStats);
    void isPausedChanged(bool isPaused);
    void canPauseChanged(bool canPause);
    void canResumeChanged(bool canResume);
    void showPerformanceMetricsChanged(bool showPerformanceMetrics);

private:
    void startProgressTimer();
    void updateBatchStats();
    void updateFileMetrics(qsizetype index);

    qsizetype indexOf(const QString& inputFile) const;
    void publishFiles();
    void publishStats();
    void setMemoryStats(const ConversionEngine::MemoryStats& stats);
    void setIsPaused(bool value);
    void setCanPause(bool value);
    void setCanResume(bool value);

    QList<FileConversionProgress> m_fileProgresses;
    BatchConversionStats m_batchStats;
    ConversionEngine::MemoryStats m_memoryStats;
    bool m_isPaused = false;
    bool m_canPause = false;
    bool m_canResume = false;
    bool m_showPerformanceMetrics = false;
    QTimer* m_progressUpdateTimer = nullptr;
    ConversionEngine::MemoryManager* m_memoryManager = nullptr;
};

} // namespace Ondrilet
