#include "BareReads.h"
#include "Ratio.h"
#include "sampler/SystemSampler.h"

#include <QCoreApplication>
#include <QTemporaryDir>

using namespace corvane;

namespace {

/// The cost of one tick on the main thread: memory, chip, publication, hand-over to the file.
void tick(benchmark::State &state)
{
    const QTemporaryDir folder;
    AppSettings settings;
    SystemSampler sampler(settings, {}, folder.path());
    compare(
        state, [&sampler] { sampler.tick(); }, BareReads({"/proc/meminfo", "/proc/stat"}));
}
BENCHMARK(tick)->UseManualTime()->Unit(benchmark::kMicrosecond);

/// The same without a chip sampler.
void memoryTick(benchmark::State &state)
{
    const QTemporaryDir folder;
    AppSettings settings;
    SystemSampler sampler(settings, {.chip = {}}, folder.path());
    compare(
        state, [&sampler] { sampler.tick(); }, BareReads({"/proc/meminfo"}));
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
