// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/batch/AppMemoryManager.h"

#include "ConversionEngine/core/FixedDecimals.h"
#include "ConversionEngine/progress/ProgressClock.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/foundation/NotificationNames.h"
#include "platform/foundation/ResidentMemory.h"

#include <QLoggingCategory>
#include <QTimer>

#include <cmath>

namespace Ondrilet {

using ConversionEngine::ProgressClock;

namespace {

Q_LOGGING_CATEGORY(appMemoryLog, "Ondrilet.AppMemoryManager")

constexpr double bytesToMebibytes = 9.5367431640625e-07;

} // namespace

AppMemoryManager::AppMemoryManager(QObject* parent)
    : QObject(parent)
    , m_lastCleanupTime(ProgressClock::current().now())
    , m_residentSize([] { return Platform::ResidentMemory::residentBytes(); })
{
    m_memoryMonitorTimer = new QTimer(this);
    m_memoryMonitorTimer->setInterval(static_cast<int>(std::lround(checkIntervalSeconds * 1000.0)));
    connect(m_memoryMonitorTimer, &QTimer::timeout, this, &AppMemoryManager::handleMemoryTimer);
    m_memoryMonitorTimer->start();
    qCInfo(appMemoryLog, "AppMemoryManager initialized");
}

void AppMemoryManager::handleMemoryTimer()
{
    checkMemoryUsage();
}

void AppMemoryManager::checkMemoryUsage()
{
    const qint64 residentBytes = m_residentSize ? m_residentSize() : -1;
    // An unreadable size skips the judgement and leaves both figures as they were.
    if (residentBytes >= 0) {
        setMemoryUsageMB(static_cast<double>(residentBytes) * bytesToMebibytes);
        if (m_memoryUsageMB > highMemoryLimitMB) {
            setIsMemoryPressureHigh(true);
            const std::string megabytes = ConversionEngine::FixedDecimals::text(m_memoryUsageMB, 1);
            qCCritical(appMemoryLog, "High memory usage detected: %sMB", megabytes.c_str());
            performMemoryCleanup();
        } else {
            setIsMemoryPressureHigh(false);
        }
    }
    // The cleanup above does not reset this clock: a high tick may post twice.
    const QDateTime now = ProgressClock::current().now();
    if (ProgressClock::secondsBetween(m_lastCleanupTime, now) > cleanupInterval) {
        performMemoryCleanup();
        m_lastCleanupTime = now;
    }
}

void AppMemoryManager::performMemoryCleanup()
{
    qCInfo(appMemoryLog, "Performing memory cleanup");
    // Nothing is freed here; the observers of the notification do the work.
    if (m_isMemoryPressureHigh)
        Platform::NotificationCenter::defaultCenter().post(
            Platform::NotificationNames::memoryPressureDetected);
}

void AppMemoryManager::setIsMemoryPressureHigh(bool value)
{
    m_isMemoryPressureHigh = value;
    emit isMemoryPressureHighChanged(value);
}

void AppMemoryManager::setMemoryUsageMB(double value)
{
    m_memoryUsageMB = value;
    emit memoryUsageMBChanged(value);
}

} // namespace Ondrilet
