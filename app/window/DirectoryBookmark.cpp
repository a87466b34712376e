#include "app/window/DirectoryBookmark.h"

#include "platform/foundation/FileSystemError.h"

#include <QDir>
#include <QFile>

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
    // The path is the bookmark: it resolves while something is there (through links too), and
    // it is given back as it was chosen, so that files reached the same way keep matching it.
    struct stat status = {};
    if (::stat(QFile::encodeName(stored).constData(), &status) != 0)
        throw FileSystemError(errno, FileSystemError::Operation::read, stored);
    return {stored, false};
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
