#include "app/ProcessStart.h"

#include "threads/MainThread.h"

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace corvane {

void openStandardDescriptors()
{
    assertMainThread();
    for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest free number is used, which is this one.
        if (fcntl(number, F_GETFD) < 0 && open("/dev/null", O_RDWR) != number)
            return;
    }
}

void ignoreWriteSignals()
{
    assertMainThread();
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

void raiseDescriptorLimit()
{
    assertMainThread();
    rlimit limit = {};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

} // namespace corvane
