#pragma once

#include <benchmark/benchmark.h>

#include <chrono>

namespace corvane {

/// Times `ours` and the bare calls that it stands on in turn, in one run, and tells the ratio of
/// the sums. To be registered with `UseManualTime()`.
template <typename Ours, typename Bare>
void compare(benchmark::State &state, Ours ours, Bare bare)
{
    using Clock = std::chrono::steady_clock;
    std::chrono::duration<double> oursTotal(0);
    std::chrono::duration<double> bareTotal(0);
    for (auto _ : state) {
        const auto start = Clock::now();
        ours();
        const auto middle = Clock::now();
        bare();
        const auto end = Clock::now();
        oursTotal += middle - start;
        bareTotal += end - middle;
        state.SetIterationTime(std::chrono::duration<double>(middle - start).count());
    }
    state.counters["ratio to bare calls"] = oursTotal / bareTotal;
}

} // namespace corvane
