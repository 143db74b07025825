// Preloaded into a program (LD_PRELOAD), this makes each call for some files hang for ever: opening
// them, and reading or writing what was opened. It begins at once, or at the signal SIGUSR2 where
// HANGING_LATER is set. HANGING_FILE is a pattern of paths as in a shell, and HANGING_REPORT a file
// that is created once a call hangs.

#include "preloaded_open.h"

#include <array>
#include <atomic>

#include <csignal>
#include <cstdlib>
#include <fnmatch.h>
#include <poll.h>

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

int openFile(int folder, const char *path, int flags, va_list arguments)
{
    const bool isNamed = pattern && fnmatch(pattern, path, 0) == 0;
    if (isNamed && isHanging)
        hang();
    const auto file = systemOpen(folder, path, flags, arguments);
    if (file >= 0 && file < int(hangs.size()))
        hangs[file] = isNamed;
    return file;
}

} // namespace

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
