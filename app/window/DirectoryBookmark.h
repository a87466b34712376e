// SPDX-License-Identifier: GPL-3.0-or-later
// A remembered output directory that survives relaunches. Without a sandbox the bookmark is the
// directory's path itself (UTF-8); "access" to it is whether the directory can be entered and
// read. Any thread; no state.
#pragma once

#include <QByteArray>
#include <QString>

namespace Ondrilet {

class DirectoryBookmark
{
public:
    struct Resolution
    {
        QString path; // the stored path, as it was chosen
        // A path stands for itself and cannot go stale: it resolves or it fails. Kept so that
        // the restore reads as the flow it follows.
        bool isStale = false;
    };

    // Throws Platform::FileSystemError when `path` is not an existing directory.
    static QByteArray create(const QString& path);

    // Throws Platform::FileSystemError when the stored path is not absolute or nothing exists
    // there any more.
    static Resolution resolve(const QByteArray& bookmark);

    // True when `path` is a directory this process may enter and read. Nothing needs to be
    // released afterwards; stopAccessing exists so that callers keep the pairing.
    static bool startAccessing(const QString& path);
    static void stopAccessing(const QString& path);
};

} // namespace Ondrilet
