// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/foundation/FileAttributes.h"

#include "platform/foundation/FileSystemError.h"

#include <QFile>
#include <QFileInfo>
#include <QList>

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Platform {

namespace {

using Operation = FileSystemError::Operation;

// Folders are made without write permission for others; the process mask may take away more.
constexpr mode_t directoryMode = 0775;

QByteArray native(const QString& path)
{
    return QFile::encodeName(path);
}

[[noreturn]] void fail(Operation operation, const QString& path, int errnoValue = errno)
{
    throw FileSystemError(errnoValue, operation, path);
}

// A descriptor that closes itself.
class Descriptor
{
public:
    explicit Descriptor(int fd)
        : m_fd(fd)
    {}
    ~Descriptor()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return m_fd; }
    int release() { return std::exchange(m_fd, -1); }

private:
    int m_fd;
};

bool isFolderItself(const QString& path)
{
    struct stat status
    {};
    return ::lstat(native(path).constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

// Without following links at any step, so that a link inside the tree is removed, never the
// tree it leads to.
void removeEntry(int parentFd, const QByteArray& name, const QString& path)
{
    struct stat status
    {};
    if (::fstatat(parentFd, name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        fail(Operation::write, path);
    if (!S_ISDIR(status.st_mode)) {
        if (::unlinkat(parentFd, name.constData(), 0) != 0)
            fail(Operation::write, path);
        return;
    }
    Descriptor folder(
        ::openat(parentFd, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (folder.get() < 0)
        fail(Operation::write, path);
    DIR* listing = ::fdopendir(folder.get());
    if (listing == nullptr)
        fail(Operation::write, path);
    const int folderFd = folder.release();
    QList<QByteArray> children;
    errno = 0;
    while (const dirent* entry = ::readdir(listing)) {
        const QByteArray child(entry->d_name);
        if (child != "." && child != "..")
            children.append(child);
    }
    const int readError = errno;
    // Every child is removed through the folder's descriptor, which stays open until then.
    try {
        if (readError != 0)
            fail(Operation::write, path, readError);
        for (const QByteArray& child : children)
            removeEntry(folderFd, child, path + u'/' + QFile::decodeName(child));
    } catch (...) {
        ::closedir(listing);
        throw;
    }
    ::closedir(listing);
    if (::unlinkat(parentFd, name.constData(), AT_REMOVEDIR) != 0)
        fail(Operation::write, path);
}

void makeDirectory(const QString& path)
{
    if (::mkdir(native(path).constData(), directoryMode) != 0)
        fail(Operation::write, path);
}

bool isDirectory(const QString& path)
{
    struct stat status
    {};
    return ::stat(native(path).constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

void syncPath(const QString& path, int flags)
{
    Descriptor fd(::open(native(path).constData(), flags | O_RDONLY | O_CLOEXEC));
    if (fd.get() < 0)
        fail(Operation::write, path);
    if (::fsync(fd.get()) != 0)
        fail(Operation::write, path);
}

} // namespace

std::optional<FileAttributes::Identity> FileAttributes::identity(const QString& path)
{
    struct stat status
    {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    return Identity{static_cast<std::uint64_t>(status.st_dev),
                    static_cast<std::uint64_t>(status.st_ino)};
}

bool FileAttributes::isSameFile(const QString& first, const QString& second)
{
    const std::optional<Identity> firstIdentity = identity(first);
    return firstIdentity && firstIdentity == identity(second);
}

bool FileAttributes::fileExists(const QString& path)
{
    struct stat status
    {};
    return ::lstat(native(path).constData(), &status) == 0;
}

void FileAttributes::moveItem(const QString& from, const QString& to)
{
    const QByteArray source = native(from);
    const QByteArray destination = native(to);
    if (::renameat2(AT_FDCWD, source.constData(), AT_FDCWD, destination.constData(),
                    RENAME_NOREPLACE) == 0)
        return;
    const int renameError = errno;
    // Some file systems (network and user-space ones) cannot refuse a destination within the
    // rename. A hard link refuses it just as well, for anything but a folder.
    if ((renameError != EINVAL && renameError != ENOSYS) || isFolderItself(from))
        fail(Operation::write, renameError == EEXIST ? to : from, renameError);
    if (::link(source.constData(), destination.constData()) != 0)
        fail(Operation::write, to);
    if (::unlink(source.constData()) != 0) {
        const int unlinkError = errno;
        ::unlink(destination.constData());
        fail(Operation::write, from, unlinkError);
    }
}

void FileAttributes::removeItem(const QString& path)
{
    removeEntry(AT_FDCWD, native(path), path);
}

void FileAttributes::removeFile(const QString& path)
{
    if (::unlink(native(path).constData()) != 0)
        fail(Operation::write, path, errno);
}

void FileAttributes::createDirectory(const QString& path, bool withIntermediates)
{
    if (!withIntermediates) {
        makeDirectory(path);
        return;
    }
    if (isDirectory(path))
        return;
    const QString parent = QFileInfo(path).path();
    if (parent != path && !fileExists(parent))
        createDirectory(parent, true);
    if (::mkdir(native(path).constData(), directoryMode) == 0)
        return;
    // Someone else may have made it meanwhile.
    const int mkdirError = errno;
    if (mkdirError == EEXIST && isDirectory(path))
        return;
    fail(Operation::write, path, mkdirError);
}

unsigned FileAttributes::permissions(const QString& path)
{
    struct stat status
    {};
    if (::stat(native(path).constData(), &status) != 0)
        fail(Operation::read, path);
    return status.st_mode & 07777;
}

void FileAttributes::setPermissions(const QString& path, unsigned mode)
{
    if (::chmod(native(path).constData(), mode & 07777) != 0)
        fail(Operation::write, path);
}

void FileAttributes::setModificationDate(const QString& path, const QDateTime& date)
{
    if (!date.isValid())
        fail(Operation::write, path, EINVAL);
    const qint64 milliseconds = date.toMSecsSinceEpoch();
    // Rounded down, so that a date before 1970 keeps a non-negative nanosecond part.
    qint64 seconds = milliseconds / 1000;
    qint64 remainder = milliseconds % 1000;
    if (remainder < 0) {
        remainder += 1000;
        seconds -= 1;
    }
    timespec time{};
    time.tv_sec = static_cast<time_t>(seconds);
    time.tv_nsec = static_cast<long>(remainder * 1000000);
    const timespec times[2] = {time, time};
    if (::utimensat(AT_FDCWD, native(path).constData(), times, 0) != 0)
        fail(Operation::write, path);
}

QDateTime FileAttributes::modificationDate(const QString& path)
{
    struct stat status
    {};
    if (::stat(native(path).constData(), &status) != 0)
        fail(Operation::read, path);
    const qint64 milliseconds =
        qint64(status.st_mtim.tv_sec) * 1000 + status.st_mtim.tv_nsec / 1000000;
    return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC);
}

qint64 FileAttributes::fileSize(const QString& path)
{
    struct stat status
    {};
    if (::stat(native(path).constData(), &status) != 0)
        fail(Operation::read, path);
    return qint64(status.st_size);
}

void FileAttributes::syncFile(const QString& path)
{
    syncPath(path, 0);
}

void FileAttributes::syncDirectory(const QString& path)
{
    syncPath(path, O_DIRECTORY);
}

} // namespace Platform
