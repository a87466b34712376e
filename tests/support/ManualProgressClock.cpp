// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ManualProgressClock.h"

#include <algorithm>
#include <cmath>

namespace TestSupport {

namespace {

qint64 toMilliseconds(double seconds)
{
    return static_cast<qint64>(std::llround(seconds * 1000.0));
}

} // namespace

ManualProgressClock::ManualProgressClock(const QDateTime& start)
    : m_now(start)
{
    ConversionEngine::ProgressClock::install(this);
}

ManualProgressClock::~ManualProgressClock()
{
    ConversionEngine::ProgressClock::install(nullptr);
}

void ManualProgressClock::runAfter(double seconds, QObject* context, std::function<void()> action)
{
    m_pending.push_back(Pending{m_now.addMSecs(toMilliseconds(std::max(seconds, 0.0))),
                                m_nextOrder++, QPointer<QObject>(context), std::move(action)});
}

void ManualProgressClock::advance(double seconds)
{
    const QDateTime target = m_now.addMSecs(toMilliseconds(seconds));
    for (;;) {
        // A call may schedule further calls, so the earliest one is looked up afresh each time.
        auto next = std::min_element(m_pending.begin(), m_pending.end(),
                                     [](const Pending& a, const Pending& b) {
                                         return a.due != b.due ? a.due < b.due : a.order < b.order;
                                     });
        if (next == m_pending.end() || next->due > target)
            break;
        Pending due = std::move(*next);
        m_pending.erase(next);
        m_now = std::max(m_now, due.due);
        if (due.context)
            due.action();
    }
    m_now = target;
}

} // namespace TestSupport
