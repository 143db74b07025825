#include "BareReads.h"
#include "Ratio.h"
#include "sampler/SystemSampler.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <filesystem>

using namespace corvane;

namespace {

/// Bare reads of the kernel files that a tick reads about the memory, and of `files`.
BareReads bareTick(std::vector<std::string> files)
{
    files.insert(files.end(), {"/proc/meminfo", "/proc/pressure/memory"});
    for (const auto &device : std::filesystem::directory_iterator("/sys/block")) {
        if (device.path().filename().string().starts_with("zram"))
            files.push_back(device.path().string() + "/mm_stat");
    }
    return BareReads(files);
}

/// The cost of one tick on the main thread: memory, chip, publication, hand-over to the file.
void tick(benchmark::State &state)
{
    const QTemporaryDir folder;
    AppSettings settings;
    SystemSampler sampler(settings, {}, folder.path());
    compare(
        state, [&sampler] { sampler.tick(); }, bareTick({"/proc/stat"}));
}
BENCHMARK(tick)->UseManualTime()->Unit(benchmark::kMicrosecond);

/// The same without a chip sampler.
void memoryTick(benchmark::State &state)
{
    const QTemporaryDir folder;
    AppSettings settings;
    SystemSampler sampler(settings, {.chip = {}}, folder.path());
    compare(
        state, [&sampler] { sampler.tick(); }, bareTick({}));
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
