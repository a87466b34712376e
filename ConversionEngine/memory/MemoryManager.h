// SPDX-License-Identifier: GPL-3.0-or-later
// The engine's bookkeeping of sample buffers: a pool of idle buffers, the set in use, an estimate
// of their memory, a pressure flag from the system's memory-pressure source, and the throttle
// decision built on them. It measures nothing itself. Main thread only (the streaming loop reads
// it from the task that runs the loop, which is on the main thread as well).
#pragma once

#include "ConversionEngine/memory/MemoryStats.h"

#include <QObject>

#include <cstdint>
#include <deque>
#include <memory>
#include <unordered_set>

class QTimer;

namespace Platform {
class MemoryPressureSource;
class SampleBuffer;
} // namespace Platform

namespace ConversionEngine {

class MemoryManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(qint64 memoryUsage READ memoryUsage NOTIFY memoryUsageChanged)
    Q_PROPERTY(qint64 peakMemoryUsage READ peakMemoryUsage NOTIFY peakMemoryUsageChanged)
    Q_PROPERTY(int bufferPoolSize READ bufferPoolSize NOTIFY bufferPoolSizeChanged)
    Q_PROPERTY(
        bool isMemoryPressureHigh READ isMemoryPressureHigh NOTIFY isMemoryPressureHighChanged)

public:
    using Buffer = std::shared_ptr<Platform::SampleBuffer>;

    // Every buffer is counted as this many bytes, whatever it really holds.
    static constexpr std::int64_t bytesPerBuffer = 4096;
    static constexpr std::int64_t memoryPressureThreshold = 0x40000000; // 1 GiB
    static constexpr double monitorIntervalSeconds = 1.0;
    static constexpr double pressureClearDelaySeconds = 5.0;

    // Starts monitoring at once: the pressure source is resumed and the 1-second tick runs.
    MemoryManager(int maxBufferPoolSize, int maxActiveBuffers, QObject* parent = nullptr);
    ~MemoryManager() override;

    std::int64_t memoryUsage() const { return m_memoryUsage; }
    std::int64_t peakMemoryUsage() const { return m_peakMemoryUsage; }
    int bufferPoolSize() const { return m_bufferPoolSize; }
    bool isMemoryPressureHigh() const { return m_isMemoryPressureHigh; }
    int maxBufferPoolSize() const { return m_maxBufferPoolSize; }
    int maxActiveBuffers() const { return m_maxActiveBuffers; }

    // The oldest idle buffer, now counted as in use; null when the pool is empty. The manager
    // never makes buffers of its own.
    Buffer acquireBuffer();
    // Counts `buffer` as in use, whatever the limit of active buffers says.
    void trackBuffer(const Buffer& buffer);
    // Ends the use of `buffer` (tracked or not) and keeps it idle while the pool has room.
    void releaseBuffer(const Buffer& buffer);
    // Forgets every buffer and stops monitoring for good; the peak stays and the other operations
    // keep working.
    void cleanup();
    MemoryStats getMemoryStats() const;
    bool shouldThrottleProcessing() const;

    // The system's pressure events arrive through this source; tests feed stalls into it.
    Platform::MemoryPressureSource* memorySource() const { return m_memorySource; }
    // The monitoring timer, or null once cleanup has run.
    const QTimer* memoryMonitorTimer() const { return m_memoryMonitorTimer; }
    // The timer's target. Public so that tests can stand in for the timer.
    void memoryMonitorTick();

signals:
    void memoryUsageChanged(qint64 memoryUsage);
    void peakMemoryUsageChanged(qint64 peakMemoryUsage);
    void bufferPoolSizeChanged(int bufferPoolSize);
    void isMemoryPressureHighChanged(bool isMemoryPressureHigh);

private:
    void setupMemoryMonitoring();
    void handleMemoryPressure();
    void updateMemoryStats();

    void setMemoryUsage(std::int64_t value);
    void setPeakMemoryUsage(std::int64_t value);
    void setBufferPoolSize(int value);
    void setIsMemoryPressureHigh(bool value);

    std::int64_t m_memoryUsage = 0;
    std::int64_t m_peakMemoryUsage = 0;
    int m_bufferPoolSize = 0;
    bool m_isMemoryPressureHigh = false;
    std::deque<Buffer> m_bufferPool;
    // By identity only: a buffer in use is kept alive by its user, not by this set.
    std::unordered_set<const Platform::SampleBuffer*> m_activeBuffers;
    int m_maxBufferPoolSize;
    int m_maxActiveBuffers;
    QTimer* m_memoryMonitorTimer = nullptr;
    Platform::MemoryPressureSource* m_memorySource = nullptr;
};

} // namespace ConversionEngine
