// Preloaded into a program (LD_PRELOAD), this makes each call for some files hang for ever: opening
// and removing them, and reading or writing what was opened; for /etc/passwd, to ask for a user. It
// begins at once, or at the signal SIGUSR2 where HANGING_LATER is set. HANGING_FILE is a pattern of
// paths as in a shell, and HANGING_REPORT a file that is created once a call hangs.

#include "preloaded_open.h"

#include <array>
#include <atomic>

#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <fnmatch.h>
#include <poll.h>
#include <pwd.h>

namespace {

const char *pattern = nullptr;
const char *report = nullptr;
std::atomic<bool> isHanging = false;

/// By descriptor: whether its file matches.
std::array<std::atomic<bool>, 4096> hangs = {};

void startHanging(int)
{
    isHanging = true;
}

__attribute__((constructor)) void readPlan()
{
    pattern = std::getenv("HANGING_FILE");
    report = std::getenv("HANGING_REPORT");
    std::signal(SIGUSR2, startHanging);
    isHanging = pattern && !std::getenv("HANGING_LATER");
}

void hang()
{
    createReport(report);
    for (;;)
        syscall(SYS_ppoll, nullptr, 0, nullptr, nullptr, 0);
}

void hangIf(int file)
{
    if (isHanging && file >= 0 && file < int(hangs.size()) && hangs[file])
        hang();
}

bool isNamed(const char *path)
{
    return pattern && fnmatch(pattern, path, 0) == 0;
}

void hangIfNamed(const char *path)
{
    if (isHanging && isNamed(path))
        hang();
}

int openFile(int folder, const char *path, int flags, va_list arguments)
{
    hangIfNamed(path);
    const auto file = systemOpen(folder, path, flags, arguments);
    if (file >= 0 && file < int(hangs.size()))
        hangs[file] = isNamed(path);
    return file;
}

} // namespace

CORVANE_PRELOADED int unlink(const char *path) noexcept
{
    hangIfNamed(path);
    return static_cast<int>(syscall(SYS_unlinkat, AT_FDCWD, path, 0));
}

CORVANE_PRELOADED passwd *getpwuid(uid_t user)
{
    hangIfNamed("/etc/passwd");
    static const auto ask = reinterpret_cast<decltype(&getpwuid)>(dlsym(RTLD_NEXT, "getpwuid"));
    return ask(user);
}

/// The number is used again, by a socket for one.
CORVANE_PRELOADED int close(int file)
{
    if (file >= 0 && file < int(hangs.size()))
        hangs[file] = false;
    return static_cast<int>(syscall(SYS_close, file));
}

CORVANE_PRELOADED ssize_t read(int file, void *into, size_t size)
{
    hangIf(file);
    return syscall(SYS_read, file, into, size);
}

CORVANE_PRELOADED ssize_t pread(int file, void *into, size_t size, off_t offset)
{
    hangIf(file);
    return syscall(SYS_pread64, file, into, size, offset);
}

CORVANE_PRELOADED ssize_t pread64(int, void *, size_t, off64_t) __attribute__((alias("pread")));

CORVANE_PRELOADED ssize_t write(int file, const void *from, size_t size)
{
    hangIf(file);
    return syscall(SYS_write, file, from, size);
}
