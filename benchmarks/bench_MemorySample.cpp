#include "BareReads.h"
#include "Ratio.h"
#include "cpu/ProcStatFile_linux.h"
#include "memory/MemorySampler.h"

using namespace corvane;

namespace {

void memorySample(benchmark::State &state)
{
    compare(
        state, [] { benchmark::DoNotOptimize(MemorySampler::sample()); },
        BareReads({"/proc/meminfo"}));
}

void coreTicks(benchmark::State &state)
{
    ProcStatFile reader;
    compare(
        state, [&reader] { benchmark::DoNotOptimize(reader.read()); }, BareReads({"/proc/stat"}));
}

BENCHMARK(memorySample)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(coreTicks)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
