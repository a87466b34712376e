// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/SerialQueue.h"

#include <exception>
#include <pthread.h>

namespace Platform {

SerialQueue::SerialQueue(QString label)
    : m_label(std::move(label))
{
    m_worker = std::thread([this] { run(); });
    // The kernel keeps 15 bytes of a thread's name; debuggers and `top -H` show it.
    const QByteArray name = m_label.toUtf8().left(15);
    pthread_setname_np(m_worker.native_handle(), name.constData());
}

SerialQueue::~SerialQueue()
{
    if (isCurrent())
        qFatal("Serial queue %s destroyed by one of its own blocks", qPrintable(m_label));
    {
        const std::lock_guard lock(m_pendingMutex);
        m_stopping = true;
    }
    m_pendingChanged.notify_one();
    m_worker.join();
}

void SerialQueue::async(std::function<void()> block)
{
    {
        const std::lock_guard lock(m_pendingMutex);
        m_pending.push_back(std::move(block));
    }
    m_pendingChanged.notify_one();
}

void SerialQueue::sync(const std::function<void()>& block)
{
    const std::lock_guard lock(m_executionMutex);
    invoke(m_label, block);
}

bool SerialQueue::isCurrent() const
{
    return std::this_thread::get_id() == m_worker.get_id();
}

void SerialQueue::run()
{
    for (;;) {
        std::function<void()> block;
        {
            std::unique_lock lock(m_pendingMutex);
            m_pendingChanged.wait(lock, [this] { return m_stopping || !m_pending.empty(); });
            // Stopping waits for the queue to run dry, so nothing handed in is ever dropped.
            if (m_pending.empty())
                return;
            block = std::move(m_pending.front());
            m_pending.pop_front();
        }
        const std::lock_guard lock(m_executionMutex);
        invoke(m_label, block);
    }
}

void SerialQueue::invoke(const QString& label, const std::function<void()>& block)
{
    // A block has nobody to hand an error back to; one that escapes is a programming error.
    try {
        if (block)
            block();
    } catch (const std::exception& error) {
        qFatal("Uncaught exception in a block of serial queue %s: %s", qPrintable(label),
               error.what());
    } catch (...) {
        qFatal("Uncaught exception in a block of serial queue %s", qPrintable(label));
    }
}

} // namespace Platform
