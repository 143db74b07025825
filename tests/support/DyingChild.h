#pragma once

#include <QtGlobal>

#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvane::test {

/// Whether `function` aborts the process that calls it, which is a silent child of the test.
template <typename Function>
bool aborts(Function function)
{
    const pid_t child = fork();
    if (child == 0) {
        const rlimit noCoreFile = {};
        setrlimit(RLIMIT_CORE, &noCoreFile);
        std::signal(SIGABRT, SIG_DFL); // Without the test runner's report.
        dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
        function();
        _exit(EXIT_SUCCESS);
    }
    int status = 0;
    const bool hasEnded = waitpid(child, &status, 0) == child;
    if (!hasEnded || (!WIFSIGNALED(status) && status != 0))
        qFatal("The child could not be started, or failed in another way.");
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT;
}

} // namespace corvane::test
