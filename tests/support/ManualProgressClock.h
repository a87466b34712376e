// SPDX-License-Identifier: GPL-3.0-or-later
// A clock that only moves when told to, for tests of the progress and memory models: while one
// lives it is the current ProgressClock, and delayed calls run when advance() passes their time.
// Main thread only.
#pragma once

#include "ConversionEngine/progress/ProgressClock.h"

#include <QPointer>

#include <vector>

namespace TestSupport {

class ManualProgressClock final : public ConversionEngine::ProgressClock
{
public:
    // Starts at `start` and installs itself; the destructor goes back to the system clock.
    explicit ManualProgressClock(const QDateTime& start = QDateTime(QDate(2024, 1, 1), QTime(12, 0),
                                                                    Qt::UTC));
    ~ManualProgressClock() override;
    ManualProgressClock(const ManualProgressClock&) = delete;
    ManualProgressClock& operator=(const ManualProgressClock&) = delete;

    QDateTime now() const override { return m_now; }
    void runAfter(double seconds, QObject* context, std::function<void()> action) override;

    // Moves time forward by `seconds`, running every delayed call that falls due on the way, each
    // at its own time and in the order in which they were asked for.
    void advance(double seconds);

    // Delayed calls not yet run (those whose context is gone included).
    int pendingCount() const { return static_cast<int>(m_pending.size()); }

private:
    struct Pending
    {
        QDateTime due;
        quint64 order = 0;
        QPointer<QObject> context;
        std::function<void()> action;
    };

    QDateTime m_now;
    quint64 m_nextOrder = 0;
    std::vector<Pending> m_pending;
};

} // namespace TestSupport
