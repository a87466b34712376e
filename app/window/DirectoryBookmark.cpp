// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/window/DirectoryBookmark.h"

#include "platform/foundation/FileSystemError.h"
#include "platform/foundation/PathAccess.h"

#include <QDir>

#include <cerrno>

namespace Ondrilet {

using Platform::FileSystemError;

QByteArray DirectoryBookmark::create(const QString& path)
{
    Platform::PathAccess::requireDirectory(path);
    return path.toUtf8();
}

DirectoryBookmark::Resolution DirectoryBookmark::resolve(const QByteArray& bookmark)
{
    const QString stored = QString::fromUtf8(bookmark);
    if (stored.isEmpty() || !QDir::isAbsolutePath(stored))
        throw FileSystemError(EINVAL, FileSystemError::Operation::read, stored);
    // The path is the bookmark: it resolves while something is there (through links too), and
    // it is given back as it was chosen, so that files reached the same way keep matching it.
    Platform::PathAccess::requireExists(stored);
    return {stored, false};
}

bool DirectoryBookmark::startAccessing(const QString& path)
{
    using Platform::PathAccess;
    return PathAccess::isDirectory(path) &&
           PathAccess::allows(path, PathAccess::read | PathAccess::enter);
}

void DirectoryBookmark::stopAccessing(const QString& path)
{
    Q_UNUSED(path);
}

} // namespace Ondrilet
