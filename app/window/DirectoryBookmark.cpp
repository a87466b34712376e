#include "app/window/DirectoryBookmark.h"

#include "platform/foundation/FileSystemError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace Ondrilet {

using platform::FileSystemError;

QByteArray DirectoryBookmark::create(const QString& path)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        throw FileSystemError(errno, FileSystemError::Operation::read, path);
    if (!S_ISDIR(status.st_mode))
        throw FileSystemError(ENOTDIR, FileSystemError::Operation::read, path);
    return path.toUtf8();
}

DirectoryBookmark::Resolution DirectoryBookmark::resolve(const QByteArray& bookmark)
{
    const QString stored = QString::fromUtf8(bookmark);
    if (stored.isEmpty() || !QDir::isAbsolutePath(stored))
        throw FileSystemError(EINVAL, FileSystemError::Operation::read, stored);
    // Follows links: a bookmark leads to the directory, not to the link.
    struct stat status = {};
    if (::stat(QFile::encodeName(stored).constData(), &status) != 0)
        throw FileSystemError(errno, FileSystemError::Operation::read, stored);
    const QString canonical = QFileInfo(stored).canonicalFilePath();
    if (canonical.isEmpty())
        throw FileSystemError(ENOENT, FileSystemError::Operation::read, stored);
    return {canonical, canonical != stored};
}

bool DirectoryBookmark::startAccessing(const QString& path)
{
    struct stat status = {};
    const QByteArray encoded = QFile::encodeName(path);
    if (::stat(encoded.constData(), &status) != 0 || !S_ISDIR(status.st_mode))
        return false;
    return ::access(encoded.constData(), R_OK | X_OK) == 0;
}

void DirectoryBookmark::stopAccessing(const QString& path)
{
    Q_UNUSED(path);
}

} // namespace Ondrilet
