// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/MemoryPressureSource.h"

#include <QFile>
#include <QLoggingCategory>
#include <QSocketNotifier>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace Platform {

Q_LOGGING_CATEGORY(memoryPressureLog, "Ondrilet.MemoryPressure")

namespace {

struct Trigger
{
    const char* text;
    int windowMilliseconds;
};

// A stall of 15 % of the time, some task waiting on memory (reclaim, refaults, swap-in): well
// above the background churn of the page cache, and early enough to drop cached buffers before
// the system turns sluggish. The one-second window reacts fast but needs CAP_SYS_RESOURCE;
// without it the kernel grants only windows in multiples of two seconds, hence the second form.
constexpr std::array<Trigger, 2> triggers{{
    {"some 150000 1000000", 1000},
    {"some 300000 2000000", 2000},
}};

// Two windows without a stall event: the trigger fires at most once a window while the stall
// lasts, so by then the pressure has been gone for a whole window at least.
constexpr int windowsOfQuiet = 2;

} // namespace

QString MemoryPressureSource::defaultPressureFilePath()
{
    return QStringLiteral("/proc/pressure/memory");
}

MemoryPressureSource::MemoryPressureSource(QObject* parent)
    : MemoryPressureSource(defaultPressureFilePath(), parent)
{}

MemoryPressureSource::MemoryPressureSource(const QString& pressureFilePath, QObject* parent)
    : QObject(parent)
{
    m_quietTimer.setSingleShot(true);
    m_quietTimer.setTimerType(Qt::PreciseTimer);
    m_quietTimer.setInterval(windowsOfQuiet * triggers.back().windowMilliseconds);
    connect(&m_quietTimer, &QTimer::timeout, this, &MemoryPressureSource::quietSpellEnded);
    openTrigger(pressureFilePath);
}

MemoryPressureSource::~MemoryPressureSource()
{
    closeTrigger();
}

void MemoryPressureSource::openTrigger(const QString& pressureFilePath)
{
    const QByteArray path = QFile::encodeName(pressureFilePath);
    int lastError = 0;
    for (const Trigger& trigger : triggers) {
        const int fd = ::open(path.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        if (fd < 0) {
            lastError = errno;
            break;
        }
        // The kernel reads the trigger as a C string, terminator included.
        const auto length = static_cast<ssize_t>(std::strlen(trigger.text) + 1);
        if (::write(fd, trigger.text, static_cast<size_t>(length)) == length) {
            m_triggerFd = fd;
            m_quietTimer.setInterval(windowsOfQuiet * trigger.windowMilliseconds);
            break;
        }
        lastError = errno;
        ::close(fd);
    }
    if (m_triggerFd < 0) {
        qCInfo(memoryPressureLog, "No memory pressure trigger on %s: %s", path.constData(),
               std::strerror(lastError));
        return;
    }
    // The kernel signals a stall event as priority data on the descriptor.
    m_notifier = new QSocketNotifier(m_triggerFd, QSocketNotifier::Exception, this);
    m_notifier->setEnabled(false);
    connect(m_notifier, &QSocketNotifier::activated, this, &MemoryPressureSource::reportStall);
}

void MemoryPressureSource::closeTrigger()
{
    if (m_notifier != nullptr) {
        m_notifier->setEnabled(false);
        delete m_notifier;
        m_notifier = nullptr;
    }
    if (m_triggerFd >= 0) {
        ::close(m_triggerFd);
        m_triggerFd = -1;
    }
}

void MemoryPressureSource::resume()
{
    if (m_cancelled || m_resumed)
        return;
    m_resumed = true;
    if (m_notifier != nullptr)
        m_notifier->setEnabled(true);
}

void MemoryPressureSource::cancel()
{
    if (m_cancelled)
        return;
    m_cancelled = true;
    m_resumed = false;
    m_quietTimer.stop();
    m_underPressure = false;
    closeTrigger();
}

bool MemoryPressureSource::isActive() const
{
    return m_resumed && !m_cancelled;
}

bool MemoryPressureSource::isAvailable() const
{
    return m_triggerFd >= 0;
}

double MemoryPressureSource::quietIntervalSeconds() const
{
    return m_quietTimer.interval() / 1000.0;
}

void MemoryPressureSource::setQuietIntervalSeconds(double seconds)
{
    m_quietTimer.setInterval(static_cast<int>(std::lround(std::max(seconds, 0.0) * 1000.0)));
}

void MemoryPressureSource::reportStall()
{
    if (!isActive())
        return;
    m_quietTimer.start();
    if (m_underPressure)
        return;
    m_underPressure = true;
    emit pressureChanged();
}

void MemoryPressureSource::quietSpellEnded()
{
    if (!isActive() || !m_underPressure)
        return;
    m_underPressure = false;
    emit pressureChanged();
}

} // namespace Platform
