#pragma once

// For libraries that are preloaded into a program (LD_PRELOAD): all ways to open a file lead to
// `openFile`, which the source that includes this defines.

#include <cstdarg>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// As `openat`; the arguments hold the mode where the flags ask for one.
int openFile(int folder, const char *path, int flags, va_list arguments);

/// What `openat` does of its own.
int systemOpen(int folder, const char *path, int flags, va_list arguments)
{
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    return static_cast<int>(syscall(SYS_openat, folder, path, flags, mode));
}

/// Creates a file by which the test sees that something has happened.
void createReport(const char *path)
{
    syscall(SYS_close, syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_CREAT, 0600));
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
