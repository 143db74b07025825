#include "gallery/ScriptedMachines.h"

#include "gallery/ScriptedSamples.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <memory>

namespace corvane::test {

namespace {

using namespace Qt::StringLiterals;

constexpr int sampleCount = 60;
constexpr int last = sampleCount - 1;

double wobble(int index, int seed)
{
    return std::sin(index * 12.9898 + seed * 78.233) * std::cos(index * 4.1414 + seed);
}

/// Three bursts of load with pauses between them, 0…1.
double bursts(int index)
{
    constexpr std::array<std::array<double, 2>, 3> ramps{{{2, 21}, {22.5, 43}, {45, 70}}};
    double level = 0;
    for (const auto &[start, end] : ramps) {
        const double rise = std::clamp((index - start) / 2.5, 0.0, 1.0);
        const double fall = std::clamp((end - index) / 3.0, 0.0, 1.0);
        level = std::max(level, std::min(rise, fall));
    }
    return level;
}

/// A load that ends with `now`.
double load(int index, double now, int seed)
{
    if (index == last)
        return now;
    return std::clamp(now * (0.9 + 0.5 * wobble(index, seed) * bursts(index)), 0.0, 1.0);
}

double bytesOf(double gib)
{
    return static_cast<double>(gibibytes(gib));
}

/// Memory in GiB.
struct Memory {
    double total = 0;
    double used = 0;
    double wired = 0;
    double compressed = 0;
    double cached = 0;
    double swapUsed = 0;
    double swapTotal = 0;
    MemoryPressure pressure = MemoryPressure::normal;
};

MemorySnapshot snapshot(const Memory &memory, int index)
{
    MemorySnapshot result;
    result.total = gibibytes(memory.total);
    const double ramp = 0.96 + 0.04 * std::min(1.0, index / 8.0);
    const double used =
        index == last ? memory.used : memory.used * (ramp + 0.001 * wobble(index, 9));
    result.used = static_cast<std::uint64_t>(bytesOf(used));
    result.appMemory = gibibytes(memory.used);
    result.wired = gibibytes(memory.wired);
    result.compressed = gibibytes(memory.compressed);
    result.cached = gibibytes(memory.cached);
    result.free = gibibytes(std::max(memory.total - memory.used - memory.cached, 0.0));
    result.available = gibibytes(std::max(memory.total - memory.used, 0.0));
    result.swapUsed = gibibytes(memory.swapUsed);
    result.swapTotal = gibibytes(memory.swapTotal);
    result.pressure = memory.pressure;
    return result;
}

std::vector<double> cores(int count, double mean)
{
    std::vector<double> loads;
    for (int core = 0; core < count; ++core)
        loads.push_back(std::clamp(mean * (1 + 0.8 * wobble(core, 21)), 0.01, 1.0));
    return loads;
}

using ChipAt = std::function<ChipReading(int index)>;

std::vector<SystemMetrics> minute(const Memory &memory, const MachineCoverage &machine,
                                  const ChipAt &chipAt)
{
    const auto coverage = std::make_shared<const MachineCoverage>(machine);
    std::vector<SystemMetrics> history = scriptedHistory();
    for (int index = 0; index < sampleCount; ++index) {
        SystemMetrics &sample = history[static_cast<std::size_t>(index)];
        sample.memory = snapshot(memory, index);
        sample.chip = chipAt(index);
        sample.chip->coverage = coverage;
    }
    return history;
}

MachineCoverage pc()
{
    return {.isWhole = false, .cpuTemperature = Coverage::known, .cpuFrequency = Coverage::known};
}

GPUCoverage nvidia(const QString &device, const QString &name, double memory)
{
    return {.device = device,
            .name = name,
            .load = Coverage::known,
            .watts = Coverage::known,
            .memory = Coverage::known,
            .memoryTotal = gibibytes(memory)};
}

GPUCoverage intelGraphics()
{
    return {.device = u"0000:00:02.0"_s,
            .name = u"Intel GPU 0"_s,
            .integrated = true,
            .usesSystemMemory = true,
            .load = Coverage::known};
}

std::vector<ProcessRow> processes(std::initializer_list<std::pair<const char *, double>> mebibytes)
{
    std::vector<ProcessRow> rows;
    for (const auto &[name, size] : mebibytes)
        rows.push_back({static_cast<std::int64_t>(rows.size()) + 1000, QString::fromLatin1(name),
                        gibibytes(size / 1024)});
    return rows;
}

AIWorkload workload(std::int64_t pid, const QString &process, AIFramework framework,
                    const QString &model, double memory, std::optional<double> gpuMemory = {})
{
    AIWorkload result{pid, pid, process, framework, model, gibibytes(memory)};
    if (gpuMemory)
        result.gpuMemory = gibibytes(*gpuMemory);
    return result;
}

/// From that sample on the GPU is asleep and cannot be read.
void fallAsleep(std::vector<SystemMetrics> &history, std::size_t from, std::size_t index)
{
    for (std::size_t i = from; i < history.size(); ++i) {
        changeCoverage(history[i], [index](MachineCoverage &machine) {
            GPUCoverage &gpu = machine.gpus[index];
            gpu.load = gpu.watts = gpu.memory = Coverage::asleep;
        });
        std::erase_if(history[i].chip->gpus, [&](const GPUMetrics &gpu) {
            return gpu.device == coverageOf(history[i]).gpus[index].device;
        });
    }
}

QString pci(int index)
{
    return u"0000:%1:00.0"_s.arg(index + 1, 2, 16, QChar(u'0'));
}

} // namespace

ScriptedMachine oneCardMinute()
{
    MachineCoverage machine = pc();
    machine.cpuWatts = Coverage::locked;
    machine.gpus = {nvidia(pci(0), u"NVIDIA GeForce RTX 4090"_s, 23.99)};
    const auto chipAt = [](int index) {
        const double busy = bursts(index);
        const bool now = index == last;
        ChipReading chip;
        chip.cpuActiveFraction = load(index, 0.23, 1);
        chip.cpuActiveMHz = 4320;
        chip.cpuTempC = 61;
        chip.cpuCoreUtilizations = cores(32, 0.23);
        chip.gpus = {{.device = pci(0),
                      .activeFraction = now ? 0.97 : 0.03 + 0.94 * busy + 0.02 * wobble(index, 2),
                      .state = u"P2"_s,
                      .megahertz = 2610,
                      .watts = now ? 318.42 : 30 + 290 * busy + 6 * wobble(index, 3),
                      .tempC = 66,
                      .memoryUsed = gibibytes(now             ? 21.592
                                                  : index < 2 ? 21.2
                                                              : 21.55)}};
        chip.gpuActiveFraction = *chip.gpus[0].activeFraction;
        chip.gpuWatts = *chip.gpus[0].watts;
        return chip;
    };
    return {.name = u"linux-nvidia"_s,
            .chip = u"AMD Ryzen 9 5950X 16-Core Processor"_s,
            .history = minute({62.72, 11.94, 1.87, 0, 27.41, 0, 8}, machine, chipAt),
            .processes = processes({{"firefox", 2365.4},
                                    {"code", 1966.1},
                                    {"llama-server", 1269.8},
                                    {"Isolated Web Co", 803.4},
                                    {"gnome-shell", 612.7},
                                    {"clangd", 548},
                                    {"whisper-server", 296.4},
                                    {"Xwayland", 214.9},
                                    {"nautilus", 168.3},
                                    {"gnome-software", 152.1},
                                    {"evolution-data-server", 96.8},
                                    {"gsd-xsettings", 71.5},
                                    {"pipewire", 38.2},
                                    {"gnome-terminal-server", 31.7},
                                    {"NetworkManager", 17.1},
                                    {"bash", 9.1},
                                    {"corvane", 8.3},
                                    {"systemd", 7.8}}),
            .workloads = {workload(48213, u"llama-server"_s, AIFramework::llamaCpp,
                                   u"Qwen2.5-32B-Instruct-Q4_K_M.gguf"_s, 1.24, 19.42),
                          workload(50977, u"whisper-server"_s, AIFramework::whisperCpp,
                                   u"ggml-large-v3-turbo-q5_0.bin"_s, 296.4 / 1024, 1.02)},
            .holders = {
                {pci(0), gibibytes(20.44), u"llama-server"_s, gibibytes(19.42), gibibytes(21.4)}}};
}

ScriptedMachine apuMinute()
{
    MachineCoverage machine = pc();
    machine.cpuWatts = machine.packageWatts = Coverage::known;
    machine.npuLoad = machine.npuWatts = Coverage::known;
    machine.gpus = {{.device = u"0000:c4:00.0"_s,
                     .name = u"AMD Radeon 890M Graphics"_s,
                     .integrated = true,
                     .usesSystemMemory = true,
                     .load = Coverage::known,
                     .watts = Coverage::known,
                     .memory = Coverage::known,
                     .memoryTotal = gibibytes(15.81),
                     .memoryOwn = gibibytes(0.5)}};
    const auto chipAt = [](int index) {
        const double busy = bursts(index);
        const bool now = index == last;
        ChipReading chip;
        chip.cpuActiveFraction = load(index, 0.31, 1);
        chip.cpuWatts = now ? 9.84 : 4 + 6 * busy + wobble(index, 4);
        chip.cpuActiveMHz = 3620;
        chip.cpuTempC = 74;
        chip.cpuCoreUtilizations = cores(24, 0.31);
        chip.gpus = {{.device = u"0000:c4:00.0"_s,
                      .integrated = true,
                      .activeFraction = now ? 0.882 : 0.04 + 0.86 * busy + 0.02 * wobble(index, 2),
                      .state = u"2900 MHz"_s,
                      .megahertz = 2900,
                      .watts = now ? 21.63 : 1 + 20.5 * busy + 0.4 * wobble(index, 3),
                      .tempC = 71,
                      .memoryUsed = gibibytes(now             ? 10.96
                                                  : index < 3 ? 10.7
                                                              : 10.95),
                      .memoryOwnUsed = gibibytes(0.5)}};
        chip.gpuActiveFraction = *chip.gpus[0].activeFraction;
        chip.gpuWatts = *chip.gpus[0].watts;
        chip.npu = NPUMetrics{
            .activeFraction =
                now ? 0.17 : std::max(0.04, 0.48 * std::sin(index / 2.1) * std::sin(index / 2.1)),
            .watts = now ? 1.35 : 0.4 + std::abs(wobble(index, 6)),
            .megahertz = 1800};
        chip.packageWatts =
            now ? 41.2 : chip.cpuWatts + chip.gpuWatts + *chip.npu->watts + 6 + 2 * busy;
        return chip;
    };
    return {.name = u"linux-apu"_s,
            .chip = u"AMD Ryzen AI 9 HX 370 w/ Radeon 890M"_s,
            .history = minute({30.62, 19.27, 12.46, 0, 6.88, 214.5 / 1024, 8}, machine, chipAt),
            .processes = processes({{"firefox", 1925.1},
                                    {"Isolated Web Co", 911.2},
                                    {"llama-server", 742.6},
                                    {"plasmashell", 512.8},
                                    {"kwin_wayland", 327.1},
                                    {"python3", 281.4},
                                    {"thunderbird", 276.3},
                                    {"konsole", 118.9},
                                    {"dolphin", 104.6},
                                    {"Xwayland", 92.2},
                                    {"krunner", 77.4},
                                    {"kded6", 61.7},
                                    {"baloo_file", 40.8},
                                    {"pipewire", 24.4},
                                    {"bash", 9.1},
                                    {"corvane", 8.4},
                                    {"systemd", 7.9},
                                    {"dbus-daemon", 5.2}}),
            .workloads = {workload(21406, u"llama-server"_s, AIFramework::llamaCpp,
                                   u"Qwen3-14B-Q4_K_M.gguf"_s, 742.6 / 1024, 9.84)},
            .holders = {{u"0000:c4:00.0"_s, gibibytes(9.84), u"llama-server"_s, gibibytes(9.84),
                         gibibytes(10.9)}}};
}

namespace {

struct CardNow {
    double load = 0;
    double watts = 0;
    double celsius = 0;
    double memory = 0; ///< GiB.
    double ai = 0;     ///< Of it.
};

ChipReading chipWithCards(int index, const std::vector<CardNow> &cards)
{
    ChipReading chip;
    const bool now = index == last;
    double sum = 0;
    for (std::size_t i = 0; i < cards.size(); ++i) {
        const CardNow &card = cards[i];
        const int phase = index + 2 * static_cast<int>(i);
        const double busy = now ? 1 : bursts(phase % sampleCount);
        GPUMetrics metrics{.device = pci(static_cast<int>(i)),
                           .activeFraction = card.load * busy,
                           .state = u"P2"_s,
                           .megahertz = 1800,
                           .watts = now ? card.watts : 22 + (card.watts - 22) * busy,
                           .tempC = card.celsius,
                           .memoryUsed = gibibytes(card.memory)};
        sum += card.load * busy;
        chip.gpuWatts += *metrics.watts;
        chip.gpus.push_back(std::move(metrics));
    }
    chip.gpuActiveFraction = sum / static_cast<double>(cards.size());
    return chip;
}

std::vector<GPUHolders> holdersOf(const std::vector<CardNow> &cards)
{
    std::vector<GPUHolders> holders;
    for (std::size_t i = 0; i < cards.size(); ++i)
        holders.push_back({pci(static_cast<int>(i)), gibibytes(cards[i].ai), u"python3"_s,
                           gibibytes(cards[i].ai), gibibytes(cards[i].memory)});
    return holders;
}

ScriptedMachine workstation(const QString &name, const std::vector<CardNow> &cards,
                            const QString &card, double memory)
{
    MachineCoverage machine = pc();
    machine.cpuWatts = Coverage::known;
    for (std::size_t i = 0; i < cards.size(); ++i)
        machine.gpus.push_back(nvidia(pci(static_cast<int>(i)), card, memory));
    const auto chipAt = [&cards](int index) {
        ChipReading chip = chipWithCards(index, cards);
        chip.cpuActiveFraction = load(index, 0.18, 1);
        chip.cpuActiveMHz = 4080;
        chip.cpuWatts = index == last ? 96.40 : 90 + 12 * wobble(index, 7);
        chip.cpuTempC = 58;
        chip.cpuCoreUtilizations = cores(64, 0.18);
        return chip;
    };
    return {.name = name,
            .chip = u"AMD Ryzen Threadripper PRO 5975WX 32-Cores"_s,
            .history = minute({251.57, 61.38, 6.74, 0, 148.2, 0, 0}, machine, chipAt),
            .processes = processes({{"python3", 25323.5},
                                    {"python3", 18493.4},
                                    {"VLLM::Worker_TP0", 3911.7},
                                    {"VLLM::Worker_TP1", 3881},
                                    {"jupyter-lab", 1146.9},
                                    {"gnome-shell", 571.3},
                                    {"dockerd", 312.6},
                                    {"prometheus", 240.8},
                                    {"Xorg", 188.4},
                                    {"containerd", 121.1},
                                    {"grafana", 118.9},
                                    {"sshd", 42.3},
                                    {"gnome-terminal-server", 31.7},
                                    {"bash", 9.1},
                                    {"corvane", 8.3},
                                    {"systemd", 7.8},
                                    {"cron", 2.9},
                                    {"agetty", 1.4}}),
            .workloads = {workload(9124, u"python3"_s, AIFramework::vllm,
                                   u"Qwen/Qwen2.5-72B-Instruct-AWQ"_s, 24.73, 86.42),
                          workload(11873, u"python3"_s, AIFramework::comfyUI,
                                   u"flux1-dev.safetensors"_s, 18.06, 23.4)},
            .holders = holdersOf(cards)};
}

} // namespace

ScriptedMachine twoCardsMinute()
{
    static const std::vector<CardNow> cards{{0.52, 231.19, 67, 22.16, 21.3},
                                            {0.49, 224.12, 72, 20.87, 20.57}};
    ScriptedMachine machine =
        workstation(u"linux-workstation-2"_s, cards, u"NVIDIA GeForce RTX 3090"_s, 24)
            .with([](MachineCoverage &coverage) { coverage.cpuWatts = Coverage::locked; });
    machine.chip = u"AMD Ryzen 9 5900X 12-Core Processor"_s;
    for (int index = 0; index < sampleCount; ++index) {
        SystemMetrics &sample = machine.history[static_cast<std::size_t>(index)];
        sample.memory = snapshot({62.7, 14.92, 2.31, 0, 41.06, 0, 0}, index);
        sample.chip->cpuWatts = 0;
        sample.chip->cpuActiveFraction = load(index, 0.12, 1);
        sample.chip->cpuActiveMHz = 4510;
        sample.chip->cpuTempC = 56;
        sample.chip->cpuCoreUtilizations = cores(24, 0.12);
    }
    machine.processes = processes({{"llama-server", 1648.6},
                                   {"firefox", 1474.6},
                                   {"gnome-shell", 588.1},
                                   {"Isolated Web Co", 466},
                                   {"python3", 402.9},
                                   {"Xwayland", 201.7},
                                   {"gnome-software", 149.2},
                                   {"nautilus", 133.4},
                                   {"dockerd", 78.3},
                                   {"containerd", 44.5},
                                   {"gsd-xsettings", 40.1},
                                   {"gnome-terminal-server", 31.7},
                                   {"pipewire", 27.4},
                                   {"NetworkManager", 17.1},
                                   {"bash", 9.1},
                                   {"corvane", 8.3},
                                   {"systemd", 7.8},
                                   {"cron", 2.9}});
    machine.workloads = {workload(3187, u"llama-server"_s, AIFramework::llamaCpp,
                                  u"Llama-3.3-70B-Instruct-Q4_K_M.gguf"_s, 1.61, 41.87)};
    return machine;
}

ScriptedMachine fourCardsMinute()
{
    static const std::vector<CardNow> cards{{0.94, 268.21, 78, 43.79, 43.21},
                                            {0.93, 262.02, 81, 43.51, 43.21},
                                            {0.61, 186.9, 70, 23.7, 23.4},
                                            {0.0, 22, 36, 0.29, 0}};
    return workstation(u"linux-workstation-4"_s, cards, u"NVIDIA RTX A6000"_s, 47.99);
}

ScriptedMachine eightCardsMinute()
{
    static const std::vector<CardNow> cards{
        {0.94, 268.21, 78, 43.79, 43.21}, {0.93, 262.02, 81, 43.51, 43.21},
        {0.61, 186.9, 70, 23.7, 23.4},    {0.0, 22, 36, 0.29, 0},
        {1.0, 300, 84, 47.2, 46.9},       {0.99, 299, 83, 47.1, 46.8},
        {0.12, 80.5, 51, 12.4, 12},       {0.0, 21, 35, 0.29, 0}};
    return workstation(u"linux-workstation-8"_s, cards, u"NVIDIA RTX A6000"_s, 47.99);
}

ScriptedMachine integratedOnlyMinute()
{
    MachineCoverage machine = pc();
    machine.cpuWatts = Coverage::locked;
    machine.gpus = {intelGraphics()};
    const auto chipAt = [](int index) {
        ChipReading chip;
        chip.cpuActiveFraction =
            index == last ? 0.641 : 0.12 + 0.56 * bursts(index) + 0.05 * wobble(index, 1);
        chip.cpuActiveMHz = 2870;
        chip.cpuTempC = 82;
        chip.cpuCoreUtilizations = cores(16, 0.64);
        chip.gpus = {{.device = u"0000:00:02.0"_s,
                      .integrated = true,
                      .activeFraction = index == last
                          ? 0.141
                          : 0.03 + 0.12 * bursts(index) + 0.01 * wobble(index, 2),
                      .state = u"600 MHz"_s,
                      .megahertz = 600}};
        chip.gpuActiveFraction = *chip.gpus[0].activeFraction;
        return chip;
    };
    return {.name = u"linux-integrated"_s,
            .chip = u"13th Gen Intel(R) Core(TM) i7-1360P"_s,
            .history = minute({15.31, 12.88, 1.94, 1.06, 1.72, 2.87, 7.65, MemoryPressure::warning},
                              machine, chipAt),
            .processes = processes({{"llama-server", 2672.6},
                                    {"firefox", 2170.9},
                                    {"Isolated Web Co", 1105.9},
                                    {"gnome-shell", 482.6},
                                    {"slack", 433.9},
                                    {"code", 402.7},
                                    {"gnome-software", 148.8},
                                    {"Xwayland", 131.2},
                                    {"evolution-data-server", 82.4},
                                    {"nautilus", 79.6},
                                    {"gsd-xsettings", 41.5},
                                    {"pipewire", 24.2},
                                    {"packagekitd", 21.8},
                                    {"NetworkManager", 16.7},
                                    {"bash", 8.9},
                                    {"corvane", 8.2},
                                    {"systemd", 7.5},
                                    {"cron", 2.8}}),
            .workloads = {workload(5518, u"llama-server"_s, AIFramework::llamaCpp,
                                   u"Llama-3.2-3B-Instruct-Q4_K_M.gguf"_s, 2.61)}};
}

ScriptedMachine sleepingCardMinute()
{
    constexpr int asleepFrom = 31;
    MachineCoverage machine = pc();
    machine.cpuWatts = Coverage::locked;
    machine.gpus = {intelGraphics(), nvidia(pci(0), u"NVIDIA GeForce RTX 3060 Laptop GPU"_s, 6)};
    const auto chipAt = [](int index) {
        ChipReading chip;
        chip.cpuActiveFraction = index == last ? 0.09 : 0.1 + 0.05 * wobble(index, 1);
        chip.cpuActiveMHz = 1940;
        chip.cpuTempC = 51;
        chip.cpuCoreUtilizations = cores(20, 0.09);
        chip.gpus = {{.device = u"0000:00:02.0"_s,
                      .integrated = true,
                      .activeFraction = index == last ? 0.0602 : 0.03 + 0.04 * bursts(index),
                      .state = u"500 MHz"_s,
                      .megahertz = 450}};
        chip.gpus.push_back({.device = pci(0),
                             .watts = 10.4 + 0.4 * wobble(index, 3),
                             .memoryUsed = gibibytes(1.86)});
        return chip;
    };
    std::vector<SystemMetrics> history =
        minute({31.06, 7.93, 1.21, 0, 9.64, 0, 8}, machine, chipAt);
    fallAsleep(history, asleepFrom, 1);
    return {.name = u"linux-asleep"_s,
            .chip = u"12th Gen Intel(R) Core(TM) i7-12700H"_s,
            .history = std::move(history),
            .processes = processes({{"firefox", 1761.3},
                                    {"Isolated Web Co", 742.8},
                                    {"gnome-shell", 466.3},
                                    {"code", 398.5},
                                    {"gnome-software", 151.9},
                                    {"Xwayland", 120.6},
                                    {"evolution-data-server", 79.3},
                                    {"nautilus", 74.2},
                                    {"gsd-xsettings", 41.8},
                                    {"gnome-terminal-server", 31.5},
                                    {"pipewire", 23.7},
                                    {"NetworkManager", 16.8},
                                    {"bash", 8.8},
                                    {"corvane", 8.1},
                                    {"systemd", 7.6}})};
}

ScriptedMachine virtualMachineMinute()
{
    MachineCoverage machine{.isWhole = false, .cpuFrequency = Coverage::known};
    machine.cpuFrequencyIsNominal = true;
    const auto chipAt = [](int index) {
        ChipReading chip;
        chip.cpuActiveFraction =
            index == last ? 0.576 : 0.1 + 0.52 * bursts(index) + 0.04 * wobble(index, 1);
        chip.cpuActiveMHz = 2300;
        chip.cpuCoreUtilizations = {0.82, 0.71, 0.66, 0.12};
        return chip;
    };
    return {.name = u"linux-vm"_s,
            .chip = u"Intel(R) Xeon(R) Processor @ 2.30GHz"_s,
            .history = minute({23.54, 4.71, 412.6 / 1024, 0, 6.03, 0, 0}, machine, chipAt),
            .processes = processes({{"llama-server", 2519},
                                    {"python3", 702.3},
                                    {"postgres", 318.8},
                                    {"node", 264.1},
                                    {"dockerd", 86.2},
                                    {"xfce4-panel", 61.3},
                                    {"Xorg", 58.7},
                                    {"containerd", 44.4},
                                    {"xfdesktop", 39.6},
                                    {"xfwm4", 36.8},
                                    {"systemd-journald", 17.6},
                                    {"NetworkManager", 16.1},
                                    {"bash", 9.2},
                                    {"corvane", 8.1},
                                    {"systemd", 7.6},
                                    {"sshd", 6.4},
                                    {"dbus-daemon", 4.6},
                                    {"cron", 2.8}}),
            .workloads = {workload(8127, u"llama-server"_s, AIFramework::llamaCpp,
                                   u"Qwen2.5-3B-Instruct-Q4_K_M.gguf"_s, 2.46),
                          workload(8340, u"python3"_s, AIFramework::transformers,
                                   u"sentence-transformers/all-MiniLM-L6-v2"_s, 702.3 / 1024)}};
}

ScriptedMachine unlikeCardsMinute()
{
    ScriptedMachine machine = twoCardsMinute().with(
        [](MachineCoverage &coverage) { coverage.gpus[1].name = u"AMD Radeon RX 7900 XTX"_s; });
    machine.name = u"linux-unlike"_s;
    fallAsleep(machine.history, machine.history.size() / 2, 1);
    machine.workloads = {workload(3187, u"llama-server"_s, AIFramework::llamaCpp,
                                  u"Qwen2.5-32B-Instruct-Q4_K_M.gguf"_s, 1.61, 21.3)};
    return machine;
}

ScriptedMachine unifiedMemoryMinute()
{
    ScriptedMachine machine = oneCardMinute().with([](MachineCoverage &coverage) {
        coverage.cpuWatts = coverage.cpuFrequency = Coverage::absent;
        GPUCoverage &gpu = coverage.gpus[0];
        gpu.name = u"NVIDIA GB10"_s;
        gpu.integrated = gpu.usesSystemMemory = true;
        gpu.watts = Coverage::absent;
        gpu.memoryTotal = gibibytes(119.7);
    });
    machine.name = u"linux-unified"_s;
    machine.chip = u"NVIDIA GB10"_s;
    for (int index = 0; index < sampleCount; ++index) {
        SystemMetrics &sample = machine.history[static_cast<std::size_t>(index)];
        sample.memory = snapshot({119.7, 48.01, 27.63, 0, 25.69, 0, 16}, index);
        sample.chip->cpuActiveMHz = 0;
        sample.chip->cpuCoreUtilizations = cores(20, 0.23);
        sample.chip->gpuWatts = 0;
        sample.chip->gpus[0].integrated = true;
        sample.chip->gpus[0].watts.reset();
    }
    return machine;
}

ScriptedMachine lowerBoundMinute()
{
    ScriptedMachine machine = oneCardMinute().with([](MachineCoverage &coverage) {
        GPUCoverage &gpu = coverage.gpus[0];
        gpu.name = u"Intel Arc A770"_s;
        gpu.memoryTotal = gibibytes(15.9);
    });
    machine.name = u"linux-arc"_s;
    machine.workloads = {workload(48213, u"llama-server"_s, AIFramework::llamaCpp,
                                  u"Qwen2.5-7B-Instruct-Q4_K_M.gguf"_s, 1.24, 5.2)};
    machine.holders = {{pci(0), gibibytes(5.2), u"llama-server"_s, gibibytes(5.2)}};
    for (SystemMetrics &sample : machine.history) {
        GPUMetrics &gpu = sample.chip->gpus[0];
        gpu.state = u"2400 MHz"_s;
        gpu.megahertz = 2400;
        gpu.watts = *gpu.watts * 0.6;
        sample.chip->gpuWatts = *gpu.watts;
        gpu.memoryUsed = gibibytes(5.2);
        gpu.memoryIsLowerBound = true;
    }
    return machine;
}

SystemMetrics changed(
    SystemMetrics sample,
    const std::function<void(MachineCoverage &coverage, ChipReading &chip)> &change)
{
    ChipReading &chip = *sample.chip;
    changeCoverage(sample, [&](MachineCoverage &coverage) { change(coverage, chip); });
    return sample;
}

std::vector<ScriptedMachine> allScriptedMachines()
{
    return {oneCardMinute(),      apuMinute(),
            twoCardsMinute(),     fourCardsMinute(),
            eightCardsMinute(),   integratedOnlyMinute(),
            sleepingCardMinute(), virtualMachineMinute(),
            unlikeCardsMinute(),  unifiedMemoryMinute(),
            lowerBoundMinute()};
}

} // namespace corvane::test
