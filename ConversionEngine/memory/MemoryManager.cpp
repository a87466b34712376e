// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/memory/MemoryManager.h"

#include "ConversionEngine/progress/ProgressClock.h"
#include "platform/foundation/MemoryPressureSource.h"
#include "platform/media/SampleBuffer.h"

#include <QLoggingCategory>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace ConversionEngine {

namespace {
Q_LOGGING_CATEGORY(memoryManagerLog, "Ondrilet.MemoryManager")
}

MemoryManager::MemoryManager(int maxBufferPoolSize, int maxActiveBuffers, QObject* parent)
    : QObject(parent)
    , m_maxBufferPoolSize(maxBufferPoolSize)
    , m_maxActiveBuffers(maxActiveBuffers)
    , m_memorySource(new Platform::MemoryPressureSource(this))
{
    setupMemoryMonitoring();
    qCInfo(memoryManagerLog, "MemoryManager initialized with pool size: %ld",
           static_cast<long>(m_maxBufferPoolSize));
}

MemoryManager::~MemoryManager() = default;

MemoryManager::Buffer MemoryManager::acquireBuffer()
{
    if (!m_bufferPool.empty()) {
        Buffer buffer = std::move(m_bufferPool.front());
        m_bufferPool.pop_front();
        m_activeBuffers.insert(buffer.get());
        updateMemoryStats();
        return buffer;
    }
    if (static_cast<std::int64_t>(m_activeBuffers.size()) >= m_maxActiveBuffers)
        qCCritical(memoryManagerLog, "Buffer pool exhausted and active buffer limit reached");
    return nullptr;
}

void MemoryManager::trackBuffer(const Buffer& buffer)
{
    m_activeBuffers.insert(buffer.get());
    updateMemoryStats();
}

void MemoryManager::releaseBuffer(const Buffer& buffer)
{
    m_activeBuffers.erase(buffer.get());
    if (static_cast<std::int64_t>(m_bufferPool.size()) < m_maxBufferPoolSize)
        m_bufferPool.push_back(buffer);
    updateMemoryStats();
}

void MemoryManager::cleanup()
{
    m_bufferPool.clear();
    m_activeBuffers.clear();
    if (m_memoryMonitorTimer) {
        m_memoryMonitorTimer->stop();
        m_memoryMonitorTimer->deleteLater();
        m_memoryMonitorTimer = nullptr;
    }
    // Nothing restarts monitoring: one cleanup ends it for the manager's life.
    m_memorySource->cancel();
    setMemoryUsage(0);
    setBufferPoolSize(0);
    qCInfo(memoryManagerLog, "MemoryManager cleanup completed");
}

MemoryStats MemoryManager::getMemoryStats() const
{
    return MemoryStats{m_memoryUsage, m_peakMemoryUsage, static_cast<int>(m_bufferPool.size()),
                       static_cast<int>(m_activeBuffers.size()), m_isMemoryPressureHigh};
}

bool MemoryManager::shouldThrottleProcessing() const
{
    return m_isMemoryPressureHigh || m_memoryUsage > memoryPressureThreshold;
}

void MemoryManager::memoryMonitorTick()
{
    updateMemoryStats();
}

void MemoryManager::setupMemoryMonitoring()
{
    // Every change of pressure counts, the return to normal included; the handler runs on a later
    // turn of the main loop and only while the manager lives.
    connect(m_memorySource, &Platform::MemoryPressureSource::pressureChanged, this,
            &MemoryManager::handleMemoryPressure, Qt::QueuedConnection);
    m_memorySource->resume();

    if (m_memoryMonitorTimer) {
        m_memoryMonitorTimer->stop();
        m_memoryMonitorTimer->deleteLater();
    }
    m_memoryMonitorTimer = new QTimer(this);
    m_memoryMonitorTimer->setInterval(
        static_cast<int>(std::lround(monitorIntervalSeconds * 1000.0)));
    connect(m_memoryMonitorTimer, &QTimer::timeout, this, &MemoryManager::memoryMonitorTick);
    m_memoryMonitorTimer->start();
}

void MemoryManager::handleMemoryPressure()
{
    setIsMemoryPressureHigh(true);
    qCCritical(memoryManagerLog, "Memory pressure detected - cleaning up buffers");
    const auto removed = static_cast<long>(m_bufferPool.size());
    m_bufferPool.clear();
    setBufferPoolSize(0);
    qCInfo(memoryManagerLog, "Removed %ld buffers from pool due to memory pressure", removed);
    // Each event schedules its own clear; a second one does not extend the first delay.
    ProgressClock::current().runAfter(pressureClearDelaySeconds, this,
                                      [this] { setIsMemoryPressureHigh(false); });
}

void MemoryManager::updateMemoryStats()
{
    const auto counted = static_cast<std::int64_t>(m_bufferPool.size() + m_activeBuffers.size());
    setMemoryUsage(counted * bytesPerBuffer);
    setPeakMemoryUsage(std::max(m_peakMemoryUsage, m_memoryUsage));
    setBufferPoolSize(static_cast<int>(m_bufferPool.size()));
}

void MemoryManager::setMemoryUsage(std::int64_t value)
{
    m_memoryUsage = value;
    emit memoryUsageChanged(value);
}

void MemoryManager::setPeakMemoryUsage(std::int64_t value)
{
    m_peakMemoryUsage = value;
    emit peakMemoryUsageChanged(value);
}

void MemoryManager::setBufferPoolSize(int value)
{
    m_bufferPoolSize = value;
    emit bufferPoolSizeChanged(value);
}

void MemoryManager::setIsMemoryPressureHigh(bool value)
{
    m_isMemoryPressureHigh = value;
    emit isMemoryPressureHighChanged(value);
}

} // namespace ConversionEngine
