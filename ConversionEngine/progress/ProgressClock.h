// SPDX-License-Identifier: GPL-3.0-or-later
// The time source and the delayed calls of the progress and memory models. The product runs on the
// wall clock and Qt's timers; a test installs a clock of its own and moves time by hand, so that
// stalls, delays and remaining times can be checked without waiting. Main thread only.
#pragma once

#include <QDateTime>
#include <QObject>

#include <functional>

namespace ConversionEngine {

class ProgressClock
{
public:
    virtual ~ProgressClock() = default;

    virtual QDateTime now() const = 0;

    // Runs `action` on the main thread once `seconds` have passed, unless `context` (never null) is
    // gone by then: the caller is held weakly, as the models' delayed calls require.
    virtual void runAfter(double seconds, QObject* context, std::function<void()> action) = 0;

    // The clock in use: the system clock unless a test has installed another.
    static ProgressClock& current();
    // Installs `clock` (not owned); nullptr goes back to the system clock.
    static void install(ProgressClock* clock);

    // Seconds from `from` to `to`, negative when `to` is earlier.
    static double secondsBetween(const QDateTime& from, const QDateTime& to);
};

} // namespace ConversionEngine
