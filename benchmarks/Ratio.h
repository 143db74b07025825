#pragma once

#include <benchmark/benchmark.h>

#include <ctime>

namespace corvane {

/// A clock of CPU time in seconds: the turns of other programs do not count.
inline double cpuSeconds(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// Times `ours` and the bare calls that it stands on in turn, in one run, and tells the ratio of
/// the sums of their CPU times: this thread's, or the whole process's where others do the work. To
/// be registered with `UseManualTime()`.
template <typename Ours, typename Bare>
void compare(benchmark::State &state, Ours ours, Bare bare,
             clockid_t clock = CLOCK_THREAD_CPUTIME_ID)
{
    double oursTotal = 0;
    double bareTotal = 0;
    for (auto _ : state) {
        const double start = cpuSeconds(clock);
        ours();
        const double middle = cpuSeconds(clock);
        bare();
        const double end = cpuSeconds(clock);
        oursTotal += middle - start;
        bareTotal += end - middle;
        state.SetIterationTime(middle - start);
    }
    state.counters["ratio to bare calls"] = oursTotal / bareTotal;
}

} // namespace corvane
