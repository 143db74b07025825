// One pass over all processes with the detection of AI workloads, against the least that any such
// pass must do: open, read and close one small file a process. Real children fill the process
// table; both sides are measured in turn, in CPU time of this thread.

#include "Crowd.h"
#include "Ratio.h"
#include "processes/ProcessSampler.h"
#include "processes/Surveyor.h"

namespace {

using namespace corvane;

/// A pass with that many processes there.
template <typename Pass>
void comparePass(benchmark::State &state, Pass pass)
{
    const Crowd crowd(static_cast<std::size_t>(state.range(0)));
    const auto paths = statmPaths();
    state.counters["processes"] = static_cast<double>(paths.size());
    compare(state, pass, [&paths] { readBare(paths); });
}

void processPass(benchmark::State &state)
{
    Surveyor surveyor;
    comparePass(state, [&surveyor] { benchmark::DoNotOptimize(surveyor.take()); });
}

/// The ranking by memory alone.
void ranking(benchmark::State &state)
{
    comparePass(state, [] { benchmark::DoNotOptimize(ProcessSampler::topByRAM(20)); });
}

void withCrowds(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Arg(200)->Arg(1000)->Arg(3000)->UseManualTime()->Unit(benchmark::kMicrosecond);
}
BENCHMARK(processPass)->Apply(withCrowds);
BENCHMARK(ranking)->Apply(withCrowds);

} // namespace

BENCHMARK_MAIN();
