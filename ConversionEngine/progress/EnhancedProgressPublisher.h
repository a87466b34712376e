// SPDX-License-Identifier: GPL-3.0-or-later
// Combines several progress trackers into one weighted fraction, one status text and two flags.
// A building block of the engine's interface; the conversion flow itself watches one tracker at a
// time. Main thread only; the trackers' changes reach it through queued deliveries.
#pragma once

#include "ConversionEngine/progress/EnhancedProgressTracker.h"

#include <QMetaObject>
#include <QObject>
#include <QString>

#include <map>
#include <memory>
#include <vector>

namespace ConversionEngine {

class EnhancedProgressPublisher : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double combinedProgress READ combinedProgress NOTIFY combinedProgressChanged)
    Q_PROPERTY(QString combinedStatus READ combinedStatus NOTIFY combinedStatusChanged)
    Q_PROPERTY(bool isActive READ isActive NOTIFY isActiveChanged)
    Q_PROPERTY(bool heartbeatVisible READ heartbeatVisible NOTIFY heartbeatVisibleChanged)

public:
    explicit EnhancedProgressPublisher(QObject* parent = nullptr);

    double combinedProgress() const { return m_combinedProgress; }
    QString combinedStatus() const { return m_combinedStatus; }
    bool isActive() const { return m_isActive; }
    bool heartbeatVisible() const { return m_heartbeatVisible; }

    // Keeps `tracker` alive under `id` with `weight` (a used id is overwritten) and follows its
    // progress, status, activity and heartbeat. The status and the heartbeat flag are those of
    // whichever tracker spoke last.
    void addTracker(std::shared_ptr<EnhancedProgressTracker> tracker, const QString& id,
                    double weight);
    // Forgets `id` and recomputes. The removed tracker's subscriptions stay on purpose: its later
    // changes still trigger recomputation and still write the status and the heartbeat flag.
    // Held by tst_enhancedprogresspublisher::removingTheLastTrackerKeepsTheStatus.
    void removeTracker(const QString& id);
    // Forgets every tracker and shows "Ready"; subscriptions stay, as on removal.
    void clearTrackers();
    void reset() { clearTrackers(); }

    // How many subscriptions are held: four per registration, never fewer.
    int subscriptionCount() const { return static_cast<int>(m_cancellables.size()); }

signals:
    void combinedProgressChanged(double combinedProgress);
    void combinedStatusChanged(const QString& combinedStatus);
    void isActiveChanged(bool isActive);
    void heartbeatVisibleChanged(bool heartbeatVisible);

private:
    void updateCombinedProgress();
    void updateCombinedActivity();

    void setCombinedProgress(double value);
    void setCombinedStatus(const QString& value);
    void setIsActive(bool value);
    void setHeartbeatVisible(bool value);

    double m_combinedProgress = 0;
    QString m_combinedStatus = QStringLiteral("Ready");
    bool m_isActive = false;
    bool m_heartbeatVisible = false;
    std::map<QString, std::shared_ptr<EnhancedProgressTracker>> m_progressTrackers;
    std::map<QString, double> m_weights;
    std::vector<QMetaObject::Connection> m_cancellables;
};

} // namespace ConversionEngine
