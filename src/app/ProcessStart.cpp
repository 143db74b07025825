#include "app/ProcessStart.h"

#include "threads/MainThread.h"
#include "threads/TimedCalls.h"

#include <chrono>
#include <cstdlib>
#include <functional>
#include <sstream>
#include <string>

#include <csignal>
#include <fcntl.h>
#include <pwd.h>
#include <sys/resource.h>
#include <unistd.h>

namespace corvane {

namespace {

bool isAbsolute(const char *path)
{
    return path && *path == '/';
}

/// Leaves the absolute paths of a list with colons; unsets the variable if there is none.
void keepAbsolute(const char *variable)
{
    const char *value = std::getenv(variable);
    if (!value)
        return;
    std::string kept;
    std::istringstream paths{std::string(value)};
    for (std::string path; std::getline(paths, path, ':');) {
        if (isAbsolute(path.c_str()))
            kept += (kept.empty() ? "" : ":") + path;
    }
    if (kept.empty())
        unsetenv(variable);
    else
        setenv(variable, kept.c_str(), 1);
}

/// By the system's list of users, which may be on a server that hangs; "/" without an answer.
std::string homeOfUser()
{
    constexpr std::chrono::seconds patience(2);
    const std::function<std::string()> ask = [] {
        const passwd *user = getpwuid(getuid());
        const char *home = user ? user->pw_dir : nullptr;
        return std::string(isAbsolute(home) ? home : "/");
    };
    return TimedCalls(1).call(ask, patience).value.value_or("/");
}

} // namespace

void openStandardDescriptors()
{
    assertMainThread();
    for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest free number is used, which is this one.
        if (fcntl(number, F_GETFD) < 0 && open("/dev/null", O_RDWR) != number)
            return;
    }
}

void dropRelativeFolders()
{
    assertMainThread();
    if (!isAbsolute(std::getenv("HOME")))
        setenv("HOME", homeOfUser().c_str(), 1);
    for (const char *folder : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                               "XDG_STATE_HOME", "XDG_RUNTIME_DIR"}) {
        if (const char *path = std::getenv(folder); path && !isAbsolute(path))
            unsetenv(folder);
    }
    keepAbsolute("XDG_CONFIG_DIRS");
    keepAbsolute("XDG_DATA_DIRS");
}

void ignoreWriteSignals()
{
    assertMainThread();
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

bool raiseDescriptorLimit()
{
    assertMainThread();
    constexpr rlim_t leastFiles = 32; // A start needs some 20.
    rlimit limit = {};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return true;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    return limit.rlim_max >= leastFiles;
}

bool hasStack()
{
    constexpr rlim_t leastBytes = 262'144; // A start needs some 100 KiB.
    rlimit limit = {};
    return getrlimit(RLIMIT_STACK, &limit) != 0 || limit.rlim_cur >= leastBytes;
}

} // namespace corvane
