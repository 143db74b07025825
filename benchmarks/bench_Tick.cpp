#include "benchmarks/BareReads.h"
#include "benchmarks/Ratio.h"
#include "sampling/SystemSampler.h"

#include <QCoreApplication>
#include <QTemporaryDir>

using namespace corvane;

namespace {

/// The kernel files that every tick needs, read with nothing around it.
BareReads bareTick()
{
    return BareReads({"/proc/meminfo", "/proc/pressure/memory", "/proc/stat"});
}

/// What one tick costs the main thread: memory, chip, publication and the hand-over to the file.
void tick(benchmark::State &state)
{
    const QTemporaryDir folder;
    AppSettings settings;
    SystemSampler sampler(settings, {}, folder.path());
    compare(
        state, [&sampler] { sampler.tick(); }, bareTick());
}
BENCHMARK(tick)->UseManualTime()->Unit(benchmark::kMicrosecond);

/// The same without a chip sampler.
void memoryTick(benchmark::State &state)
{
    const QTemporaryDir folder;
    AppSettings settings;
    SystemSampler sampler(settings, {.chip = {}}, folder.path());
    compare(
        state, [&sampler] { sampler.tick(); }, bareTick());
}
BENCHMARK(memoryTick)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Corvane"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
