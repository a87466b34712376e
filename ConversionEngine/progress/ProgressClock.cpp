// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/progress/ProgressClock.h"

#include <QTimer>

#include <cmath>

namespace ConversionEngine {

namespace {

class SystemProgressClock final : public ProgressClock
{
public:
    QDateTime now() const override { return QDateTime::currentDateTimeUtc(); }

    void runAfter(double seconds, QObject* context, std::function<void()> action) override
    {
        const auto milliseconds = static_cast<int>(std::lround(std::max(seconds, 0.0) * 1000.0));
        QTimer::singleShot(milliseconds, context, std::move(action));
    }
};

SystemProgressClock& systemClock()
{
    static SystemProgressClock clock;
    return clock;
}

ProgressClock* installedClock = nullptr;

} // namespace

ProgressClock& ProgressClock::current()
{
    return installedClock ? *installedClock : systemClock();
}

void ProgressClock::install(ProgressClock* clock)
{
    installedClock = clock;
}

double ProgressClock::secondsBetween(const QDateTime& from, const QDateTime& to)
{
    return static_cast<double>(from.msecsTo(to)) / 1000.0;
}

} // namespace ConversionEngine
