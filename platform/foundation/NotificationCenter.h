// SPDX-License-Identifier: GPL-3.0-or-later
// Notifications by name inside the process: any thread posts, observers hear it on the GUI thread.
// An observation belongs to a QObject and ends with it. Observers are added and removed on the
// GUI thread; `post` may be called from any thread.
#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantMap>

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>

namespace Platform {

class NotificationCenter : public QObject
{
    Q_OBJECT

public:
    struct Notification
    {
        QString name;
        const void* object = nullptr;
        QVariantMap userInfo;
    };

    using Handler = std::function<void(const Notification&)>;

    explicit NotificationCenter(QObject* parent = nullptr);
    ~NotificationCenter() override;

    // The one centre the whole program posts to.
    static NotificationCenter& defaultCenter();

    // Calls `handler` for every later post of `name` whose object is `object` (nullptr: whatever
    // the object), on the GUI thread, for as long as `observer` lives and is not removed. One
    // observer may hold several observations, even of one name.
    void addObserver(QObject* observer, const QString& name, const void* object, Handler handler);

    // Ends every observation of `observer`. Posts already queued are no longer delivered to it.
    void removeObserver(QObject* observer);
    // Ends the observations of `observer` for `name`.
    void removeObserver(QObject* observer, const QString& name);

    // Delivers a notification on a later turn of the GUI thread's event loop to the observations
    // that match it now and still exist then.
    void post(const QString& name, const void* object = nullptr, QVariantMap userInfo = {});

private:
    struct Observation
    {
        QPointer<QObject> observer;
        const QObject* observerAddress = nullptr;
        QString name;
        const void* object = nullptr;
        Handler handler;
    };

    void deliver(const Notification& notification, const QList<std::uint64_t>& observationIds);
    void forget(const QObject* observer);

    mutable std::mutex m_mutex;
    std::map<std::uint64_t, Observation> m_observations;
    QHash<const QObject*, QMetaObject::Connection> m_destroyedConnections;
    std::uint64_t m_nextId = 1;
};

} // namespace Platform
