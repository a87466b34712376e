// SPDX-License-Identifier: GPL-3.0-or-later
// A library loaded with LD_PRELOAD into a program under test: it makes one kind of file call
// fail, or stops the program at it, on paths below one folder. Any thread of the program may
// enter it; it keeps one atomic count and no other state that changes.
//
//   ONDRILET_FAULT_FOLDER  absolute folder; only calls on paths below it count
//   ONDRILET_FAULT_CALL    write | fsync | rename | unlink | openat | chmod
//   ONDRILET_FAULT_MATCH   optional: only file names holding this text count
//   ONDRILET_FAULT_AFTER   the first N counted calls run as usual (default 0)
//   ONDRILET_FAULT_ERRNO   ENOSPC | EIO | EACCES | EROFS: later counted calls fail so
//   ONDRILET_FAULT_TIMES   how many calls fail; 0 or unset: all later ones
//   ONDRILET_FAULT_HOLD    before | after: instead, call N+1 stops the calling thread for good,
//                          before or after doing its work, once ONDRILET_FAULT_MARK is created
//   ONDRILET_FAULT_MARK    optional: a file created at the first failed or held call
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

enum class Call
{
    none,
    write,
    fsync,
    rename,
    unlink,
    openat,
    chmod
};
enum class Hold
{
    none,
    before,
    after
};

struct Config
{
    std::string folder; // with a trailing slash
    Call call = Call::none;
    std::string match;
    long after = 0;
    long times = 0;
    int error = 0;
    Hold hold = Hold::none;
    std::string mark;
};

std::atomic<long> counted{0};

const char* variable(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

Config readConfig()
{
    Config config;
    config.folder = variable("ONDRILET_FAULT_FOLDER");
    if (!config.folder.empty() && config.folder.back() != '/')
        config.folder += '/';
    const std::string call = variable("ONDRILET_FAULT_CALL");
    const struct
    {
        const char* name;
        Call call;
    } calls[] = {{"write", Call::write},   {"fsync", Call::fsync},   {"rename", Call::rename},
                 {"unlink", Call::unlink}, {"openat", Call::openat}, {"chmod", Call::chmod}};
    for (const auto& entry : calls)
        if (call == entry.name)
            config.call = entry.call;
    config.match = variable("ONDRILET_FAULT_MATCH");
    config.after = std::strtol(variable("ONDRILET_FAULT_AFTER"), nullptr, 10);
    config.times = std::strtol(variable("ONDRILET_FAULT_TIMES"), nullptr, 10);
    const std::string error = variable("ONDRILET_FAULT_ERRNO");
    config.error = error == "ENOSPC"   ? ENOSPC
                   : error == "EIO"    ? EIO
                   : error == "EACCES" ? EACCES
                   : error == "EROFS"  ? EROFS
                                       : 0;
    const std::string hold = variable("ONDRILET_FAULT_HOLD");
    config.hold = hold == "before" ? Hold::before : hold == "after" ? Hold::after : Hold::none;
    config.mark = variable("ONDRILET_FAULT_MARK");
    if (config.folder.empty() || config.call == Call::none ||
        (config.error == 0 && config.hold == Hold::none))
        config.call = Call::none;
    return config;
}

const Config& config()
{
    static const Config loaded = readConfig();
    return loaded;
}

// An absolute form of `path` seen from `directoryFd`, without resolving links.
std::string absolute(int directoryFd, const char* path)
{
    if (!path)
        return {};
    if (path[0] == '/')
        return path;
    char base[PATH_MAX];
    if (directoryFd == AT_FDCWD) {
        if (!getcwd(base, sizeof base))
            return {};
    } else {
        char link[64];
        std::snprintf(link, sizeof link, "/proc/self/fd/%d", directoryFd);
        const ssize_t length = readlink(link, base, sizeof base - 1);
        if (length <= 0)
            return {};
        base[length] = '\0';
    }
    return std::string(base) + '/' + path;
}

std::string pathOfDescriptor(int fd)
{
    char link[64];
    char target[PATH_MAX];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    const ssize_t length = readlink(link, target, sizeof target - 1);
    if (length <= 0)
        return {};
    target[length] = '\0';
    return target;
}

bool concerns(const std::string& path)
{
    const Config& c = config();
    // The folder itself counts too: a directory is synced by its own path.
    if (path.size() + 1 == c.folder.size() && c.folder.compare(0, path.size(), path) == 0)
        return c.match.empty();
    if (path.compare(0, c.folder.size(), c.folder) != 0)
        return false;
    if (c.match.empty())
        return true;
    const std::size_t slash = path.rfind('/');
    return path.find(c.match, slash == std::string::npos ? 0 : slash) != std::string::npos;
}

// Creates the mark file, if one is asked for, with the system call itself so that the library
// does not count its own call.
void leaveMark()
{
    static std::atomic<bool> left{false};
    const Config& c = config();
    if (c.mark.empty() || left.exchange(true))
        return;
    const int fd = static_cast<int>(
        syscall(SYS_openat, AT_FDCWD, c.mark.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    if (fd >= 0)
        syscall(SYS_close, fd);
}

void holdForever()
{
    leaveMark();
    for (;;)
        pause();
}

// What a counted call does: run as usual, fail with an errno, or stop before or after its work.
enum class Verdict
{
    proceed,
    fail,
    holdBefore,
    holdAfter
};

Verdict judge(Call call, const std::string& path, const std::string& otherPath = {})
{
    const Config& c = config();
    if (c.call != call || (!concerns(path) && (otherPath.empty() || !concerns(otherPath))))
        return Verdict::proceed;
    const long number = ++counted;
    if (number <= c.after)
        return Verdict::proceed;
    if (c.hold == Hold::none)
        return c.times <= 0 || number <= c.after + c.times ? Verdict::fail : Verdict::proceed;
    if (number != c.after + 1)
        return Verdict::proceed;
    return c.hold == Hold::before ? Verdict::holdBefore : Verdict::holdAfter;
}

template <typename Function>
Function next(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// Runs `work` under `verdict`; `failed` is what the call returns when it fails.
template <typename Result, typename Work>
Result run(Verdict verdict, Result failed, Work work)
{
    switch (verdict) {
    case Verdict::fail:
        leaveMark();
        errno = config().error;
        return failed;
    case Verdict::holdBefore:
        holdForever();
        return failed;
    case Verdict::holdAfter: {
        work();
        holdForever();
        return failed;
    }
    case Verdict::proceed:
        break;
    }
    return work();
}

int openWith(const char* name, int directoryFd, const char* path, int flags, mode_t mode)
{
    using OpenAt = int (*)(int, const char*, int, ...);
    static const OpenAt real = next<OpenAt>(name);
    return run(judge(Call::openat, absolute(directoryFd, path)), -1,
               [&] { return real(directoryFd, path, flags, mode); });
}

int openPlain(const char* name, const char* path, int flags, mode_t mode)
{
    using Open = int (*)(const char*, int, ...);
    static const Open real = next<Open>(name);
    return run(judge(Call::openat, absolute(AT_FDCWD, path)), -1,
               [&] { return real(path, flags, mode); });
}

mode_t modeOf(int flags, va_list arguments)
{
    return (flags & O_CREAT) || (flags & __O_TMPFILE) == __O_TMPFILE
               ? static_cast<mode_t>(va_arg(arguments, int))
               : 0;
}

} // namespace

extern "C" {

ssize_t write(int fd, const void* buffer, size_t count)
{
    using Write = ssize_t (*)(int, const void*, size_t);
    static const Write real = next<Write>("write");
    if (config().call != Call::write || fd <= 2)
        return real(fd, buffer, count);
    return run(judge(Call::write, pathOfDescriptor(fd)), ssize_t(-1),
               [&] { return real(fd, buffer, count); });
}

int fsync(int fd)
{
    using Sync = int (*)(int);
    static const Sync real = next<Sync>("fsync");
    if (config().call != Call::fsync)
        return real(fd);
    return run(judge(Call::fsync, pathOfDescriptor(fd)), -1, [&] { return real(fd); });
}

int fdatasync(int fd)
{
    using Sync = int (*)(int);
    static const Sync real = next<Sync>("fdatasync");
    if (config().call != Call::fsync)
        return real(fd);
    return run(judge(Call::fsync, pathOfDescriptor(fd)), -1, [&] { return real(fd); });
}

int rename(const char* from, const char* to)
{
    using Rename = int (*)(const char*, const char*);
    static const Rename real = next<Rename>("rename");
    return run(judge(Call::rename, absolute(AT_FDCWD, from), absolute(AT_FDCWD, to)), -1,
               [&] { return real(from, to); });
}

int renameat(int fromFd, const char* from, int toFd, const char* to)
{
    using RenameAt = int (*)(int, const char*, int, const char*);
    static const RenameAt real = next<RenameAt>("renameat");
    return run(judge(Call::rename, absolute(fromFd, from), absolute(toFd, to)), -1,
               [&] { return real(fromFd, from, toFd, to); });
}

int renameat2(int fromFd, const char* from, int toFd, const char* to, unsigned int flags)
{
    using RenameAt2 = int (*)(int, const char*, int, const char*, unsigned int);
    static const RenameAt2 real = next<RenameAt2>("renameat2");
    return run(judge(Call::rename, absolute(fromFd, from), absolute(toFd, to)), -1,
               [&] { return real(fromFd, from, toFd, to, flags); });
}

int unlink(const char* path)
{
    using Unlink = int (*)(const char*);
    static const Unlink real = next<Unlink>("unlink");
    return run(judge(Call::unlink, absolute(AT_FDCWD, path)), -1, [&] { return real(path); });
}

int unlinkat(int directoryFd, const char* path, int flags)
{
    using UnlinkAt = int (*)(int, const char*, int);
    static const UnlinkAt real = next<UnlinkAt>("unlinkat");
    return run(judge(Call::unlink, absolute(directoryFd, path)), -1,
               [&] { return real(directoryFd, path, flags); });
}

int chmod(const char* path, mode_t mode)
{
    using Chmod = int (*)(const char*, mode_t);
    static const Chmod real = next<Chmod>("chmod");
    return run(judge(Call::chmod, absolute(AT_FDCWD, path)), -1, [&] { return real(path, mode); });
}

int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openPlain("open", path, flags, mode);
}

int open64(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openPlain("open64", path, flags, mode);
}

int openat(int directoryFd, const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openWith("openat", directoryFd, path, flags, mode);
}

int openat64(int directoryFd, const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openWith("openat64", directoryFd, path, flags, mode);
}

} // extern "C"
