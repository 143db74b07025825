// One chip sample against the bare reads of the same files: on this machine, and on a tree that
// stands in for a desktop with a discrete card (its files are ordinary ones, which cost less to
// read than the kernel's).

#include "BareReads.h"
#include "Ratio.h"
#include "chip/ChipSource_linux.h"

#include <filesystem>

using namespace corvane;

namespace {

namespace fs = std::filesystem;

/// What a tick reads of the desktop: files of these names.
std::vector<std::string> filesOfATick(const std::string &root)
{
    std::vector<std::string> paths;
    const auto isRead = [](const std::string &name) {
        for (const char *wanted : {"stat", "time_in_state", "energy_uj", "runtime_status",
                                   "gpu_busy_percent", "pp_dpm_sclk", "power1_average"}) {
            if (name == wanted)
                return true;
        }
        return name.starts_with("temp") && name.ends_with("_input");
    };
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(root)) {
        const std::string path = entry.path().string();
        const bool isCounted = path.find(":0:0/") == std::string::npos // Inside the package.
            && path.find("hwmon2") == std::string::npos                // The board's own sensors.
            && path.find("hwmon0/temp1") == std::string::npos; // Another sensor is used instead.
        if (entry.is_regular_file() && isCounted && isRead(entry.path().filename().string()))
            paths.push_back(path);
    }
    return paths;
}

/// Steps a second between the samples.
void sampleChip(benchmark::State &state, const std::string &root,
                const std::vector<std::string> &files)
{
    double now = 0;
    const ChipSource chip = openChipSourceBelow(root, [&now] { return now; });
    const auto sample = [&] {
        now += 1;
        benchmark::DoNotOptimize(chip());
    };
    BareReads bare(files);
    state.counters["files"] = static_cast<double>(bare.count());
    compare(state, sample, [&bare] { bare(); });
}

void thisMachine(benchmark::State &state)
{
    sampleChip(state, "/", {"/proc/stat"});
}

void desktopWithACard(benchmark::State &state)
{
    sampleChip(state, CORVANE_MACHINES "/amd-desktop",
               filesOfATick(CORVANE_MACHINES "/amd-desktop"));
}

BENCHMARK(thisMachine)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(desktopWithACard)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
