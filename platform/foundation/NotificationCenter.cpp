// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/NotificationCenter.h"

#include "platform/foundation/MainQueue.h"

#include <QList>

namespace Platform {

NotificationCenter::NotificationCenter(QObject* parent)
    : QObject(parent)
{}

NotificationCenter::~NotificationCenter()
{
    const std::lock_guard lock(m_mutex);
    for (const QMetaObject::Connection& connection : std::as_const(m_destroyedConnections))
        QObject::disconnect(connection);
}

NotificationCenter& NotificationCenter::defaultCenter()
{
    // Never destroyed: observers and late posts may outlive any order of static destruction.
    static NotificationCenter* const center = new NotificationCenter;
    return *center;
}

void NotificationCenter::addObserver(QObject* observer, const QString& name, const void* object,
                                     Handler handler)
{
    if (observer == nullptr || !handler) {
        qWarning("Notification observer for %s ignored: it needs an owner and a handler",
                 qPrintable(name));
        return;
    }
    const std::lock_guard lock(m_mutex);
    m_observations.emplace(m_nextId++,
                           Observation{observer, observer, name, object, std::move(handler)});
    if (!m_destroyedConnections.contains(observer)) {
        // Direct, so that the observations are gone before the address can be reused.
        m_destroyedConnections.insert(observer, connect(
                                                    observer, &QObject::destroyed, this,
                                                    [this, observer] { forget(observer); },
                                                    Qt::DirectConnection));
    }
}

void NotificationCenter::removeObserver(QObject* observer)
{
    QMetaObject::Connection connection;
    {
        const std::lock_guard lock(m_mutex);
        std::erase_if(m_observations, [observer](const auto& entry) {
            return entry.second.observerAddress == observer;
        });
        connection = m_destroyedConnections.take(observer);
    }
    disconnect(connection);
}

void NotificationCenter::removeObserver(QObject* observer, const QString& name)
{
    QMetaObject::Connection connection;
    {
        const std::lock_guard lock(m_mutex);
        bool othersRemain = false;
        std::erase_if(m_observations, [&](const auto& entry) {
            const Observation& observation = entry.second;
            if (observation.observerAddress != observer)
                return false;
            if (observation.name == name)
                return true;
            othersRemain = true;
            return false;
        });
        if (!othersRemain)
            connection = m_destroyedConnections.take(observer);
    }
    disconnect(connection);
}

void NotificationCenter::post(const QString& name, const void* object, QVariantMap userInfo)
{
    QList<std::uint64_t> matching;
    {
        const std::lock_guard lock(m_mutex);
        for (const auto& [id, observation] : m_observations) {
            if (observation.name == name &&
                (observation.object == nullptr || observation.object == object))
                matching.append(id);
        }
    }
    if (matching.isEmpty())
        return;
    MainQueue::async([self = QPointer<NotificationCenter>(this),
                      notification = Notification{name, object, std::move(userInfo)},
                      matching = std::move(matching)] {
        if (self)
            self->deliver(notification, matching);
    });
}

void NotificationCenter::deliver(const Notification& notification,
                                 const QList<std::uint64_t>& observationIds)
{
    for (const std::uint64_t id : observationIds) {
        Handler handler;
        {
            const std::lock_guard lock(m_mutex);
            const auto found = m_observations.find(id);
            // Removed since the post, or its observer is on its way out.
            if (found == m_observations.end() || found->second.observer.isNull())
                continue;
            handler = found->second.handler;
        }
        // Called without the lock, so that a handler may add or remove observers.
        handler(notification);
    }
}

void NotificationCenter::forget(const QObject* observer)
{
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_observations, [observer](const auto& entry) {
        return entry.second.observerAddress == observer;
    });
    m_destroyedConnections.remove(observer);
}

} // namespace Platform
