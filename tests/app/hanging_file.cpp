// Preloaded into a program (LD_PRELOAD), this makes each call for some files hang for ever: opening
// them, and reading or writing what was opened. It begins at once, or at the signal SIGUSR2 where
// HANGING_LATER is set. HANGING_FILE is a pattern of paths as in a shell, and HANGING_REPORT a file
// that is created once a call hangs.

#include <array>
#include <atomic>

#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <fcntl.h>
#include <fnmatch.h>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

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
    const long file = syscall(SYS_openat, AT_FDCWD, report, O_WRONLY | O_CREAT, 0600);
    syscall(SYS_close, file);
    for (;;)
        syscall(SYS_ppoll, nullptr, 0, nullptr, nullptr, 0);
}

void hangIf(int file)
{
    if (isHanging && file >= 0 && file < int(hangs.size()) && hangs[file])
        hang();
}

int openFile(int folder, const char *path, int flags, va_list arguments)
{
    const bool isNamed = pattern && fnmatch(pattern, path, 0) == 0;
    if (isNamed && isHanging)
        hang();
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    const auto file = static_cast<int>(syscall(SYS_openat, folder, path, flags, mode));
    if (file >= 0 && file < int(hangs.size()))
        hangs[file] = isNamed;
    return file;
}

} // namespace

#define CORVANE_PRELOADED extern "C" __attribute__((visibility("default")))

CORVANE_PRELOADED int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const int file = openFile(AT_FDCWD, path, flags, arguments);
    va_end(arguments);
    return file;
}

CORVANE_PRELOADED int openat(int folder, const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const int file = openFile(folder, path, flags, arguments);
    va_end(arguments);
    return file;
}

CORVANE_PRELOADED int open64(const char *, int, ...) __attribute__((alias("open")));
CORVANE_PRELOADED int openat64(int, const char *, int, ...) __attribute__((alias("openat")));

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
