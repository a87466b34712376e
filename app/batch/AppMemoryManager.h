// SPDX-License-Identifier: GPL-3.0-or-later
// Watches the process's resident memory from the application side every 30 seconds and, while
// it is above 1024 MiB, posts NotificationNames::memoryPressureDetected for the engine and the
// window to react.
// The only poster of that notification. Main thread only.
#pragma once

#include <QDateTime>
#include <QObject>

#include <functional>

class QTimer;

namespace Ondrilet {

class AppMemoryManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(
        bool isMemoryPressureHigh READ isMemoryPressureHigh NOTIFY isMemoryPressureHighChanged)
    Q_PROPERTY(double memoryUsageMB READ memoryUsageMB NOTIFY memoryUsageMBChanged)

public:
    // Resident bytes of the process, or a negative number when they cannot be read.
    using ResidentSizeSource = std::function<qint64()>;

    static constexpr double checkIntervalSeconds = 30.0;
    static constexpr double cleanupInterval = 300.0; // seconds
    static constexpr double highMemoryLimitMB = 1024.0;

    // The first check comes one interval after construction, none at once.
    explicit AppMemoryManager(QObject* parent = nullptr);

    bool isMemoryPressureHigh() const { return m_isMemoryPressureHigh; }
    double memoryUsageMB() const { return m_memoryUsageMB; }
    QDateTime lastCleanupTime() const { return m_lastCleanupTime; }
    const QTimer* memoryMonitorTimer() const { return m_memoryMonitorTimer; }

    // Reads the resident size from elsewhere than the kernel's count; for tests.
    void setResidentSizeSource(ResidentSizeSource source) { m_residentSize = std::move(source); }

    // The timer's target. Public so that tests can stand in for the timer.
    void handleMemoryTimer();

signals:
    void isMemoryPressureHighChanged(bool isMemoryPressureHigh);
    void memoryUsageMBChanged(double memoryUsageMB);

private:
    void checkMemoryUsage();
    void performMemoryCleanup();

    void setIsMemoryPressureHigh(bool value);
    void setMemoryUsageMB(double value);

    bool m_isMemoryPressureHigh = false;
    double m_memoryUsageMB = 0;
    QTimer* m_memoryMonitorTimer = nullptr;
    QDateTime m_lastCleanupTime;
    ResidentSizeSource m_residentSize;
};

} // namespace Ondrilet
