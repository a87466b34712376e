// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/ResidentMemory.h"

#include <QFile>

#include <unistd.h>

namespace Platform {

qint64 ResidentMemory::residentBytes()
{
    return residentBytes(QStringLiteral("/proc/self/statm"));
}

qint64 ResidentMemory::residentBytes(const QString& statmPath)
{
    QFile file(statmPath);
    // Files under /proc report no size, so the line is read rather than the whole file.
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> fields = file.readLine(256).simplified().split(' ');
    if (fields.size() < 2)
        return -1;
    bool ok = false;
    const qint64 pages = fields.at(1).toLongLong(&ok);
    const long pageBytes = ::sysconf(_SC_PAGESIZE);
    if (!ok || pages < 0 || pageBytes <= 0)
        return -1;
    return pages * pageBytes;
}

} // namespace Platform
