// SPDX-License-Identifier: GPL-3.0-or-later
// What a path leads to and what this process may do with it, following links: existence, the
// access rights of the effective user, whether it is a directory, the room on its volume.
// Stateless; any thread.
#pragma once

#include <QString>

#include <optional>

namespace Platform {

class PathAccess
{
public:
    PathAccess() = delete;

    enum Right : unsigned
    {
        read = 1,
        write = 2,
        enter = 4, // search a directory, run a file
    };

    // Follows links: a link to nothing is no file (unlike FileAttributes::fileExists).
    static bool exists(const QString& path);
    // True when the process has every right in `rights` (an OR of Right) on what `path` leads to.
    static bool allows(const QString& path, unsigned rights);
    // True when `path` leads to a directory.
    static bool isDirectory(const QString& path);

    // Throws Platform::FileSystemError (a read) when nothing can be reached at `path`, or
    // ENOTDIR when what is there is no directory.
    static void requireDirectory(const QString& path);
    // Throws Platform::FileSystemError (a read) when nothing can be reached at `path`.
    static void requireExists(const QString& path);

    // Bytes free to an unprivileged user on the volume holding `path` (the root reserve is not
    // counted); nothing when the volume reports no blocks at all (as /proc). Throws
    // Platform::FileSystemError when the volume cannot be asked.
    static std::optional<qint64> availableBytes(const QString& path);
};

} // namespace Platform
