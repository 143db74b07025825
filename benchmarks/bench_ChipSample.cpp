// One chip sample against the bare reads of the same files: on this machine, and on a tree that
// stands in for a desktop with a discrete card (its files are ordinary ones, which cost less to
// read than the kernel's).

#include "BareReads.h"
#include "Ratio.h"
#include "chip/ChipSource_linux.h"
#include "platform/KernelFile_linux.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>

#include <unistd.h>

using namespace corvane;

namespace {

namespace fs = std::filesystem;

/// What a tick reads of the desktop: files of these names.
std::vector<std::string> filesOfATick(const std::string &root)
{
    std::vector<std::string> paths;
    const auto isRead = [](const std::string &name) {
        for (const char *wanted :
             {"stat", "time_in_state", "energy_uj", "runtime_status", "gpu_busy_percent",
              "pp_dpm_sclk", "mem_info_vram_used", "power1_average"}) {
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

/// Steps a second between the samples. `clock`: of this thread, or also of those that ask the
/// drivers. `later`: how long a sample waits for these; the program's wait for the first alone.
void sampleChip(benchmark::State &state, const std::string &root,
                const std::vector<std::string> &files, double (*clock)() = threadSeconds,
                std::chrono::milliseconds later = std::chrono::minutes(1))
{
    double now = 0;
    const ChipSource chip = openChipSourceBelow(root, [&now] { return now; }, {},
                                                {.first = std::chrono::minutes(1), .later = later});
    const auto sample = [&] {
        now += 1;
        benchmark::DoNotOptimize(chip());
    };
    BareReads bare(files);
    state.counters["files"] = static_cast<double>(bare.count());
    compare(
        state, sample, [&bare] { bare(); }, clock);
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

/// The desktop with three more cards like its own; deleted with the object.
class FourCards {
public:
    FourCards()
    {
        fs::copy(CORVANE_MACHINES "/amd-desktop", m_root,
                 fs::copy_options::recursive | fs::copy_options::copy_symlinks);
        for (const char *number : {"1", "2", "3"}) {
            const std::string slot = m_bridge + "0000:0" + number + ":00.0";
            fs::copy(m_root + m_bridge + "0000:0b:00.0", m_root + slot,
                     fs::copy_options::recursive | fs::copy_options::copy_symlinks);
            const fs::path card = m_root + "/sys/class/drm/card" + number;
            fs::create_directories(card);
            fs::create_directory_symlink(m_root + slot, card / "device");
        }
    }
    ~FourCards() { fs::remove_all(fs::path(m_root).parent_path()); }
    FourCards(const FourCards &) = delete;
    FourCards &operator=(const FourCards &) = delete;

    const std::string &root() const { return m_root; }

private:
    static std::string newFolder()
    {
        std::string path = (fs::temp_directory_path() / "corvane-cards-XXXXXX").string();
        return mkdtemp(path.data()) ? path : std::string();
    }

    const std::string m_bridge = "/sys/devices/pci0000:00/0000:00:03.1/0000:09:00.0/0000:0a:00.0/";
    const std::string m_root = newFolder() + "/machine";
};

/// Whether all threads but this one wait for something, by the kernel's word.
bool othersRest()
{
    const std::string own = std::to_string(gettid());
    for (const fs::directory_entry &thread : fs::directory_iterator("/proc/self/task")) {
        const std::string stat = readTrimmedFile(thread.path().string() + "/stat");
        const std::size_t state = stat.rfind(')') + 2; // After the name, which may hold anything.
        if (thread.path().filename() != own && stat.substr(state, 1) != "S")
            return false;
    }
    return true;
}

/// CPU time that this thread spent on waiting for the others, which the program does not.
double waitForOthers()
{
    static double waiting = 0;
    const double start = threadSeconds();
    while (!othersRest()) { }
    return waiting += threadSeconds() - start;
}

double ownSeconds()
{
    const double waiting = waitForOthers();
    return threadSeconds() - waiting;
}

double allSeconds()
{
    const double waiting = waitForOthers();
    return processSeconds() - waiting;
}

/// What the tick's thread does: it wakes the others, and takes what they read before.
void workstationWithFourCards(benchmark::State &state)
{
    const FourCards machine;
    sampleChip(state, machine.root(), filesOfATick(machine.root()), ownSeconds, {});
}

/// With the work of the threads that ask the drivers, and that of waking them.
void workstationOnAllThreads(benchmark::State &state)
{
    const FourCards machine;
    sampleChip(state, machine.root(), filesOfATick(machine.root()), allSeconds, {});
}

BENCHMARK(workstationWithFourCards)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(workstationOnAllThreads)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(thisMachine)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(desktopWithACard)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
