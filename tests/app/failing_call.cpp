// Preloaded into a program (LD_PRELOAD), this makes one call of the system fail: the n-th of its
// kind, counted from the start, or from the signal SIGUSR2 where FAILING_CALL_LATER is set.
// FAILING_CALL names the call, FAILING_CALL_N the number, and FAILING_CALL_FILE a file that is
// created once the call has failed.

#include "preloaded_open.h"

#include <atomic>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/socket.h>

namespace {

struct Plan {
    const char *call = nullptr;
    int number = 0;
    const char *file = nullptr;
};

Plan plan;
std::atomic<bool> isCounting = false;
std::atomic<int> count = 0;

void startCounting(int)
{
    isCounting = true;
}

__attribute__((constructor)) void readPlan()
{
    plan.call = std::getenv("FAILING_CALL");
    plan.file = std::getenv("FAILING_CALL_FILE");
    const char *number = std::getenv("FAILING_CALL_N");
    plan.number = number ? std::atoi(number) : 0;
    std::signal(SIGUSR2, startCounting);
    isCounting = plan.call && !std::getenv("FAILING_CALL_LATER");
}

bool fails(const char *call, int error)
{
    if (!isCounting || std::strcmp(call, plan.call) != 0 || ++count != plan.number)
        return false;
    createReport(plan.file);
    errno = error;
    return true;
}

int openFile(int folder, const char *path, int flags, va_list arguments)
{
    if (fails("open", EMFILE))
        return -1;
    return systemOpen(folder, path, flags, arguments);
}

} // namespace

CORVANE_PRELOADED int socket(int domain, int type, int protocol) noexcept
{
    return fails("socket", EMFILE) ? -1
                                   : static_cast<int>(syscall(SYS_socket, domain, type, protocol));
}

CORVANE_PRELOADED int connect(int socket, const sockaddr *address, socklen_t size)
{
    return fails("connect", ECONNREFUSED)
        ? -1
        : static_cast<int>(syscall(SYS_connect, socket, address, size));
}

CORVANE_PRELOADED int pipe2(int ends[2], int flags) noexcept
{
    return fails("pipe", EMFILE) ? -1 : static_cast<int>(syscall(SYS_pipe2, ends, flags));
}

CORVANE_PRELOADED int pipe(int ends[2]) noexcept
{
    return pipe2(ends, 0);
}

CORVANE_PRELOADED int eventfd(unsigned int value, int flags) noexcept
{
    return fails("eventfd", EMFILE) ? -1 : static_cast<int>(syscall(SYS_eventfd2, value, flags));
}

CORVANE_PRELOADED void *mmap(void *place, std::size_t size, int protection, int flags, int file,
                             off_t offset) noexcept
{
    if (fails("mmap", ENOMEM))
        return MAP_FAILED;
    return reinterpret_cast<void *>(
        syscall(SYS_mmap, place, size, protection, flags, file, offset));
}

CORVANE_PRELOADED void *mmap64(void *, std::size_t, int, int, int, off_t) noexcept
    __attribute__((alias("mmap")));

CORVANE_PRELOADED int pthread_create(pthread_t *thread, const pthread_attr_t *attributes,
                                     void *(*start)(void *), void *argument) noexcept
{
    using Create = decltype(&pthread_create);
    static const auto create = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    return fails("clone", EAGAIN) ? EAGAIN : create(thread, attributes, start, argument);
}
