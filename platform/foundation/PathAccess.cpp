// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/PathAccess.h"

#include "platform/foundation/FileSystemError.h"

#include <QFile>

#include <cerrno>
#include <limits>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace Platform {

namespace {

QByteArray encoded(const QString& path)
{
    return QFile::encodeName(path);
}

int accessMode(unsigned rights)
{
    int mode = 0;
    if (rights & PathAccess::read)
        mode |= R_OK;
    if (rights & PathAccess::write)
        mode |= W_OK;
    if (rights & PathAccess::enter)
        mode |= X_OK;
    return mode == 0 ? F_OK : mode;
}

} // namespace

bool PathAccess::exists(const QString& path)
{
    return ::access(encoded(path).constData(), F_OK) == 0;
}

bool PathAccess::allows(const QString& path, unsigned rights)
{
    return ::access(encoded(path).constData(), accessMode(rights)) == 0;
}

bool PathAccess::isDirectory(const QString& path)
{
    struct stat status = {};
    return ::stat(encoded(path).constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

void PathAccess::requireDirectory(const QString& path)
{
    struct stat status = {};
    if (::stat(encoded(path).constData(), &status) != 0)
        throw FileSystemError(errno, FileSystemError::Operation::read, path);
    if (!S_ISDIR(status.st_mode))
        throw FileSystemError(ENOTDIR, FileSystemError::Operation::read, path);
}

void PathAccess::requireExists(const QString& path)
{
    struct stat status = {};
    if (::stat(encoded(path).constData(), &status) != 0)
        throw FileSystemError(errno, FileSystemError::Operation::read, path);
}

std::optional<qint64> PathAccess::availableBytes(const QString& path)
{
    struct statvfs volume = {};
    if (::statvfs(encoded(path).constData(), &volume) != 0)
        throw FileSystemError(errno, FileSystemError::Operation::read, path);
    if (volume.f_blocks == 0)
        return std::nullopt;

    const auto maximum = static_cast<unsigned long long>(std::numeric_limits<qint64>::max());
    const unsigned long long blockBytes = volume.f_frsize;
    const unsigned long long blocks = volume.f_bavail;
    if (blockBytes != 0 && blocks > maximum / blockBytes)
        return std::numeric_limits<qint64>::max();
    return static_cast<qint64>(blocks * blockBytes);
}

} // namespace Platform
