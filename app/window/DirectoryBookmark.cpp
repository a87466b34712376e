#include "app/window/DirectoryBookmark.h"

#include "platform/foundation/FileSystemError.h"
#include "platform/foundation/PathAccess.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>

namespace Ondrilet {

using platform::FileSystemError;

QByteArray DirectoryBookmark::create(const QString& path)
{
    platform::PathAccess::requireDirectory(path);
    return path.toUtf8();
}

DirectoryBookmark::Resolution DirectoryBookmark::resolve(const QByteArray& bookmark)
{
    const QString stored = QString::fromUtf8(bookmark);
    if (stored.isEmpty() || !QDir::isAbsolutePath(stored))
        throw FileSystemError(EINVAL, FileSystemError::Operation::read, stored);
    // Follows links: a bookmark leads to the directory, not to the link.
    platform::PathAccess::requireExists(stored);
    const QString canonical = QFileInfo(stored).canonicalFilePath();
    if (canonical.isEmpty())
        throw FileSystemError(ENOENT, FileSystemError::Operation::read, stored);
    return {canonical, canonical != stored};
}

bool DirectoryBookmark::startAccessing(const QString& path)
{
    using platform::PathAccess;
    return PathAccess::isDirectory(path) &&
           PathAccess::allows(path, PathAccess::read | PathAccess::enter);
}

void DirectoryBookmark::stopAccessing(const QString& path)
{
    Q_UNUSED(path);
}

} // namespace Ondrilet
