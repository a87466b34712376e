// SPDX-License-Identifier: GPL-3.0-or-later
// A serial queue: one worker thread of its own runs the queued blocks one at a time, in order.
// `sync` runs a block on the caller's thread while no block of the queue runs. Any thread may
// use a queue; the one that owns it destroys it, never one of its own blocks.
#pragma once

#include <QString>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace Platform {

class SerialQueue
{
public:
    explicit SerialQueue(QString label);
    // Runs every block still queued (including those queued meanwhile), then joins the worker.
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    const QString& label() const { return m_label; }

    // Queues `block` to run on the worker thread after every block queued before it.
    void async(std::function<void()> block);

    // Runs `block` now on the calling thread, holding the lock under which the worker runs its
    // blocks, so that it never overlaps one of them. Called from a block of this queue (or from
    // within another `sync` of it) it runs at once, since that lock is already held there.
    void sync(const std::function<void()>& block);

    // True on this queue's worker thread.
    bool isCurrent() const;

private:
    void run();
    static void invoke(const QString& label, const std::function<void()>& block);

    QString m_label;
    std::mutex m_pendingMutex;
    std::condition_variable m_pendingChanged;
    std::deque<std::function<void()>> m_pending;
    bool m_stopping = false;
    // Held while a block runs; recursive so that a block may call `sync` on its own queue.
    std::recursive_mutex m_executionMutex;
    std::thread m_worker;
};

} // namespace Platform
