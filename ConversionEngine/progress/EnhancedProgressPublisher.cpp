// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/progress/EnhancedProgressPublisher.h"

namespace ConversionEngine {

EnhancedProgressPublisher::EnhancedProgressPublisher(QObject* parent)
    : QObject(parent)
{}

void EnhancedProgressPublisher::addTracker(std::shared_ptr<EnhancedProgressTracker> tracker,
                                           const QString& id, double weight)
{
    EnhancedProgressTracker* source = tracker.get();
    m_progressTrackers[id] = std::move(tracker);
    m_weights[id] = weight;

    // Each subscription first delivers the value the tracker holds now, then every later change,
    // all queued to the main thread in the order they happened. `this` as the context holds the
    // publisher weakly: a delivery after its end is dropped.
    const auto queued = [this](auto reaction) {
        QMetaObject::invokeMethod(this, std::move(reaction), Qt::QueuedConnection);
    };
    queued([this] { updateCombinedProgress(); });
    m_cancellables.push_back(connect(
        source, &EnhancedProgressTracker::progressChanged, this,
        [this](double) { updateCombinedProgress(); }, Qt::QueuedConnection));
    queued([this, status = source->statusMessage()] { setCombinedStatus(status); });
    m_cancellables.push_back(connect(
        source, &EnhancedProgressTracker::statusMessageChanged, this,
        [this](const QString& status) { setCombinedStatus(status); }, Qt::QueuedConnection));
    queued([this] { updateCombinedActivity(); });
    m_cancellables.push_back(connect(
        source, &EnhancedProgressTracker::isActiveChanged, this,
        [this](bool) { updateCombinedActivity(); }, Qt::QueuedConnection));
    queued([this, beat = source->heartbeatActive()] { setHeartbeatVisible(beat); });
    m_cancellables.push_back(connect(
        source, &EnhancedProgressTracker::heartbeatActiveChanged, this,
        [this](bool beat) { setHeartbeatVisible(beat); }, Qt::QueuedConnection));
}

void EnhancedProgressPublisher::removeTracker(const QString& id)
{
    m_progressTrackers.erase(id);
    m_weights.erase(id);
    updateCombinedProgress();
    updateCombinedActivity();
}

void EnhancedProgressPublisher::clearTrackers()
{
    m_progressTrackers.clear();
    m_weights.clear();
    setCombinedProgress(0);
    setCombinedStatus(QStringLiteral("Ready"));
    setIsActive(false);
    setHeartbeatVisible(false);
}

void EnhancedProgressPublisher::updateCombinedProgress()
{
    if (m_progressTrackers.empty()) {
        setCombinedProgress(0);
        return;
    }
    double totalWeight = 0;
    for (const auto& [id, weight] : m_weights)
        totalWeight += weight;
    if (!(totalWeight > 0)) {
        setCombinedProgress(0);
        return;
    }
    // A tracker without a weight adds nothing, while the total of all weights stays the divisor.
    double weighted = 0;
    for (const auto& [id, tracker] : m_progressTrackers) {
        const auto weight = m_weights.find(id);
        if (weight != m_weights.end())
            weighted += weight->second * tracker->progress();
    }
    setCombinedProgress(weighted / totalWeight);
}

void EnhancedProgressPublisher::updateCombinedActivity()
{
    bool anyActive = false;
    for (const auto& [id, tracker] : m_progressTrackers) {
        if (tracker->isActive()) {
            anyActive = true;
            break;
        }
    }
    setIsActive(anyActive);
}

void EnhancedProgressPublisher::setCombinedProgress(double value)
{
    m_combinedProgress = value;
    emit combinedProgressChanged(value);
}

void EnhancedProgressPublisher::setCombinedStatus(const QString& value)
{
    m_combinedStatus = value;
    emit combinedStatusChanged(value);
}

void EnhancedProgressPublisher::setIsActive(bool value)
{
    m_isActive = value;
    emit isActiveChanged(value);
}

void EnhancedProgressPublisher::setHeartbeatVisible(bool value)
{
    m_heartbeatVisible = value;
    emit heartbeatVisibleChanged(value);
}

} // namespace ConversionEngine
