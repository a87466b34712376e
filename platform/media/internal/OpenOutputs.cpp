// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/internal/OpenOutputs.h"

#include <QFile>

#include <mutex>
#include <unistd.h>

namespace Platform::Internal {

namespace {

std::mutex& listMutex()
{
    static std::mutex mutex;
    return mutex;
}

QStringList& openPaths()
{
    static QStringList paths;
    return paths;
}

QStringList& abandonedPaths()
{
    static QStringList paths;
    return paths;
}

} // namespace

void OpenOutputs::add(const QString& path)
{
    const std::lock_guard lock(listMutex());
    openPaths().append(path);
    abandonedPaths().removeAll(path);
}

void OpenOutputs::abandon(const QString& path)
{
    const std::lock_guard lock(listMutex());
    openPaths().removeOne(path);
    if (!abandonedPaths().contains(path))
        abandonedPaths().append(path);
}

bool OpenOutputs::isUnfinished(const QString& path)
{
    const std::lock_guard lock(listMutex());
    return openPaths().contains(path) || abandonedPaths().contains(path);
}

void OpenOutputs::remove(const QString& path)
{
    const std::lock_guard lock(listMutex());
    openPaths().removeOne(path);
}

QStringList OpenOutputs::discardAll()
{
    const std::lock_guard lock(listMutex());
    QStringList discarded;
    discarded.swap(openPaths());
    // A writer still running goes on writing into a file without a name, which the system
    // frees when the program ends.
    for (const QString& path : std::as_const(discarded))
        ::unlink(QFile::encodeName(path).constData());
    return discarded;
}

} // namespace Platform::Internal
