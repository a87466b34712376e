// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/MainQueue.h"

#include <QCoreApplication>
#include <QThread>
#include <QTimer>

#include <climits>
#include <cmath>

#if defined(__SANITIZE_THREAD__)
#include <memory>
#include <sanitizer/tsan_interface.h>
#endif

namespace Platform {

namespace {

// Before the application object exists, or once it is gone, no event loop will ever run a
// block; dropping it with a warning beats stopping a program that is shutting down.
QCoreApplication* application()
{
    QCoreApplication* app = QCoreApplication::instance();
    if (app == nullptr)
        qWarning("%s", "A block for the GUI thread was dropped: there is no application object");
    return app;
}

int millisecondsFor(double seconds)
{
    if (!(seconds > 0.0))
        return 0;
    const double milliseconds = std::ceil(seconds * 1000.0);
    return milliseconds >= static_cast<double>(INT_MAX) ? INT_MAX : static_cast<int>(milliseconds);
}

} // namespace

void MainQueue::async(std::function<void()> block)
{
    QCoreApplication* app = application();
    if (app == nullptr)
        return;
#if defined(__SANITIZE_THREAD__)
    // Qt's event queue orders the post before the call, but its lock is out of the thread
    // checker's sight: say so, or everything the block captured reads as a race.
    auto handedOver = std::make_shared<std::function<void()>>(std::move(block));
    __tsan_release(handedOver.get());
    block = [handedOver] {
        __tsan_acquire(handedOver.get());
        (*handedOver)();
    };
#endif
    QMetaObject::invokeMethod(app, std::move(block), Qt::QueuedConnection);
}

void MainQueue::asyncAfter(double seconds, std::function<void()> block)
{
    const int milliseconds = millisecondsFor(seconds);
    // The timer is started from the GUI thread, because a timer needs an event loop on the thread
    // that starts it and the caller may be a plain worker thread.
    async([milliseconds, block = std::move(block)]() mutable {
        QTimer::singleShot(milliseconds, Qt::PreciseTimer, QCoreApplication::instance(),
                           std::move(block));
    });
}

bool MainQueue::isCurrent()
{
    const QCoreApplication* app = QCoreApplication::instance();
    return app != nullptr && QThread::currentThread() == app->thread();
}

} // namespace Platform
