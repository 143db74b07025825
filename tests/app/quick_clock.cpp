// Preloaded into a program (LD_PRELOAD), this makes minutes pass in seconds: the monotonic clock
// runs faster, and waits for files and for other threads are shortened by the same factor. The wall
// clock is unchanged.

#include <ctime>

#include <cerrno>
#include <csignal>
#include <dlfcn.h>
#include <poll.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr long long speed = 20;
constexpr long long second = 1'000'000'000; // Nanoseconds.

timespec after(long long nanoseconds)
{
    return {.tv_sec = nanoseconds / second, .tv_nsec = nanoseconds % second};
}

long long nanoseconds(const timespec &time)
{
    return time.tv_sec * second + time.tv_nsec;
}

} // namespace

#define CORVANE_PRELOADED extern "C" __attribute__((visibility("default")))

CORVANE_PRELOADED int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const auto result = static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    if (result == 0 && clock == CLOCK_MONOTONIC)
        *time = after(nanoseconds(*time) * speed);
    return result;
}

CORVANE_PRELOADED int ppoll(pollfd *files, nfds_t count, const timespec *timeout,
                            const sigset_t *signals)
{
    constexpr std::size_t signalSetSize = _NSIG / 8;
    timespec shortened = {};
    if (timeout)
        shortened = after(nanoseconds(*timeout) / speed);
    return static_cast<int>(
        syscall(SYS_ppoll, files, count, timeout ? &shortened : nullptr, signals, signalSetSize));
}

CORVANE_PRELOADED int poll(pollfd *files, nfds_t count, int milliseconds)
{
    const timespec timeout = after(milliseconds * (second / 1000));
    return ppoll(files, count, milliseconds < 0 ? nullptr : &timeout, nullptr);
}

CORVANE_PRELOADED int pthread_cond_clockwait(pthread_cond_t *condition, pthread_mutex_t *mutex,
                                             clockid_t clock, const timespec *deadline)
{
    using Wait = decltype(&pthread_cond_clockwait);
    static const auto wait = reinterpret_cast<Wait>(dlsym(RTLD_NEXT, "pthread_cond_clockwait"));
    const timespec nearer =
        clock == CLOCK_MONOTONIC ? after(nanoseconds(*deadline) / speed) : *deadline;
    return wait(condition, mutex, clock, &nearer);
}
