#pragma once

#include <benchmark/benchmark.h>

#include <ctime>
#include <sys/resource.h>

namespace corvane {

/// Clocks of CPU time in seconds: the turns of other programs do not count.
inline double secondsOf(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

inline double threadSeconds()
{
    return secondsOf(CLOCK_THREAD_CPUTIME_ID);
}

inline double processSeconds()
{
    return secondsOf(CLOCK_PROCESS_CPUTIME_ID);
}

/// Of the children that have been waited for.
inline double childrenSeconds()
{
    rusage usage = {};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// Times `ours` and the bare calls that it stands on in turn, in one run, and reports the ratio of
/// the sums of their CPU times: this thread's, or others' where others do the work. Before each
/// turn `prepare` makes what both use up, outside the measured time. To be registered with
/// `UseManualTime()`.
template <typename Ours, typename Bare, typename Prepare = void (*)()>
void compare(
    benchmark::State &state, Ours ours, Bare bare, double (*now)() = threadSeconds,
    Prepare prepare = [] {})
{
    double oursTotal = 0;
    double bareTotal = 0;
    for (auto _ : state) {
        prepare();
        const double start = now();
        ours();
        const double middle = now();
        bare();
        const double end = now();
        oursTotal += middle - start;
        bareTotal += end - middle;
        state.SetIterationTime(middle - start);
    }
    state.counters["ratio to bare calls"] = oursTotal / bareTotal;
}

} // namespace corvane
