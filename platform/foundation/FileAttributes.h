// SPDX-License-Identifier: GPL-3.0-or-later
// The file operations a conversion depends on, as plain system calls: existence, a move that
// never replaces, removal, folders, permission bits, the modification date and durable writes.
// Failures throw Platform::FileSystemError. Any thread.
#pragma once

#include <QDateTime>
#include <QString>

#include <compare>
#include <cstdint>
#include <optional>

namespace Platform {

class FileAttributes
{
public:
    // Which file a name reaches: two names reach the same file when both numbers agree, however
    // they are spelled (links, hard links, bind mounts, "." and "..").
    struct Identity
    {
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
        friend bool operator==(const Identity&, const Identity&) = default;
    };

    // The identity of what the path leads to, following symbolic links; nothing when it
    // cannot be reached.
    static std::optional<Identity> identity(const QString& path);

    // True when both paths exist and reach the same file.
    static bool isSameFile(const QString& first, const QString& second);

    // True when anything occupies the name: a file, a folder, a device, even a dangling link.
    static bool fileExists(const QString& path);

    // Renames within one volume and refuses an existing destination (writeFileExists), so
    // nothing is ever overwritten by a move. Where the file system cannot refuse atomically, a
    // file (not a folder) is linked under the new name and then unlinked from the old one.
    static void moveItem(const QString& from, const QString& to);

    // Removes a file, a link (not what it points to) or a whole folder tree.
    static void removeItem(const QString& path);
    // Removes a file or a link (not what it points to), never a folder: a folder fails with
    // "Is a directory".
    static void removeFile(const QString& path);

    // Creates a folder (never world-writable). With intermediates, missing parents are created
    // too and an existing folder is no error; without, an existing name is writeFileExists.
    static void createDirectory(const QString& path, bool withIntermediates);

    // The permission bits (including set-id and sticky) of what the path leads to.
    static unsigned permissions(const QString& path);
    static void setPermissions(const QString& path, unsigned mode);

    // Sets both the modification and the access time; there is no settable creation time, and
    // this is the date file managers show.
    static void setModificationDate(const QString& path, const QDateTime& date);
    static QDateTime modificationDate(const QString& path);

    // The size in bytes of what the path leads to (a link is followed).
    static qint64 fileSize(const QString& path);

    // Waits until the file's content, or the folder's list of names, is on the disk.
    static void syncFile(const QString& path);
    static void syncDirectory(const QString& path);
};

} // namespace Platform
