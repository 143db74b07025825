#include "platform/FileDescriptor.h"
#include "sampling/CoreTicks.h"
#include "sampling/MemorySampler.h"

#include <benchmark/benchmark.h>

#include <array>
#include <vector>

#include <ctime>
#include <unistd.h>

using namespace corvane;

namespace {

/// CPU time of this thread, which does not pass while others have the processor.
double cpuSeconds()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// The bare system calls: each file from its start in one read.
class BareReads {
public:
    explicit BareReads(const std::vector<const char *> &paths)
    {
        for (const char *path : paths)
            m_files.push_back(openRegular(path, FileAccess::read));
    }

    void operator()()
    {
        for (const FileDescriptor &file : m_files) {
            ssize_t count = pread(file.get(), m_buffer.data(), m_buffer.size(), 0);
            benchmark::DoNotOptimize(count);
        }
    }

private:
    std::vector<FileDescriptor> m_files;
    std::array<char, 65'536> m_buffer = {};
};

/// Times `ours` and the bare reads by turns, so that the ratio holds on a machine that others use.
template <typename Ours>
void compare(benchmark::State &state, Ours ours, BareReads bare)
{
    double oursTime = 0;
    double bareTime = 0;
    for ([[maybe_unused]] const auto round : state) {
        const double start = cpuSeconds();
        bare();
        const double middle = cpuSeconds();
        ours();
        const double end = cpuSeconds();
        bareTime += middle - start;
        oursTime += end - middle;
        state.SetIterationTime(end - middle);
    }
    state.counters["bare_us"] = bareTime * 1e6 / static_cast<double>(state.iterations());
    state.counters["ratio"] = oursTime / bareTime;
}

void memorySample(benchmark::State &state)
{
    compare(
        state, [] { benchmark::DoNotOptimize(MemorySampler::sample()); },
        BareReads({"/proc/meminfo", "/proc/pressure/memory"}));
}

void coreTicks(benchmark::State &state)
{
    CoreTicksReader reader;
    compare(
        state, [&reader] { benchmark::DoNotOptimize(reader.read()); }, BareReads({"/proc/stat"}));
}

BENCHMARK(memorySample)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(coreTicks)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
