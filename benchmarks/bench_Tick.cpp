#include "benchmarks/Ratio.h"
#include "sampling/SystemSampler.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <array>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

using namespace corvane;

namespace {

/// The kernel files that every tick needs, read with nothing around it.
class BareReads {
public:
    BareReads()
    {
        for (const char *path : {"/proc/meminfo", "/proc/pressure/memory", "/proc/stat"}) {
            if (const int file = open(path, O_RDONLY | O_CLOEXEC); file >= 0)
                m_files.push_back(file);
        }
    }

    void operator()()
    {
        for (const int file : m_files)
            benchmark::DoNotOptimize(pread(file, m_buffer.data(), m_buffer.size(), 0));
    }

private:
    std::vector<int> m_files;
    std::array<char, 1 << 16> m_buffer = {};
};

/// What one tick costs the main thread: memory, chip, publication and the hand-over to the file.
void tick(benchmark::State &state)
{
    const QTemporaryDir folder;
    AppSettings settings;
    SystemSampler sampler(settings, {}, folder.path());
    compare(
        state, [&sampler] { sampler.tick(); }, BareReads());
}
BENCHMARK(tick)->UseManualTime()->Unit(benchmark::kMicrosecond);

/// The same without a chip sampler.
void memoryTick(benchmark::State &state)
{
    const QTemporaryDir folder;
    AppSettings settings;
    SystemSampler sampler(settings, {.chip = {}}, folder.path());
    compare(
        state, [&sampler] { sampler.tick(); }, BareReads());
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
