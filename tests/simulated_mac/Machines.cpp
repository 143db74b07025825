// The four machines. Names, order, units and tables are those that such machines show; the gains a
// second are round numbers, so that a test can work out what a reading must be.

#include "simulated_mac/Machine.h"

#include <map>

namespace corvane::simulated {

namespace {

constexpr std::int64_t million = 1'000'000;
constexpr std::uint64_t gibibyte = std::uint64_t(1) << 30;

using Text = std::string;
using States = std::map<Text, std::int64_t>; ///< Millions of ticks a second by state.

Channel energy(const Text &name, std::int64_t perSecond, const Text &unit = "mJ")
{
    return {.group = "Energy Model", .name = name, .unit = unit, .perSecond = perSecond};
}

/// A state channel whose states are `names`, with the residencies of `gains`.
Channel stateChannel(const Text &group, const Text &subgroup, const Text &name,
                     const std::vector<Text> &names, const States &gains)
{
    Channel channel{.group = group,
                    .subgroup = subgroup,
                    .name = name,
                    .unit = "24Mticks",
                    .format = Channel::Format::states};
    for (const Text &state : names) {
        const auto gain = gains.find(state);
        channel.states.push_back({state, gain == gains.end() ? 0 : gain->second * million / 10});
    }
    return channel;
}

/// `idle` followed by V0P(n-1) … V(n-1)P0.
std::vector<Text> voltageStateNames(std::vector<Text> idle, int count)
{
    for (int state = 0; state < count; ++state)
        idle.push_back("V" + std::to_string(state) + "P" + std::to_string(count - 1 - state));
    return idle;
}

/// Tenths of millions of ticks, so that a second has 240 of them.
Channel cluster(const Text &name, const std::vector<Text> &names, const States &gains)
{
    return stateChannel("CPU Stats", "CPU Complex Performance States", name, names, gains);
}

/// What else the group has; a client that asks for the cluster states alone does not get it.
Channel core(const Text &name, const std::vector<Text> &names)
{
    return stateChannel("CPU Stats", "CPU Core Performance States", name, names, {{names[0], 240}});
}

void appendGraphics(std::vector<Channel> &channels, const States &active, const States &boost)
{
    std::vector<Text> levels;
    for (int level = 1; level <= 15; ++level)
        levels.push_back("P" + std::to_string(level));
    std::vector<Text> withOff = levels;
    withOff.insert(withOff.begin(), "OFF");
    std::vector<Text> limited = levels;
    limited.push_back("NO_CLTM");
    channels.push_back(
        stateChannel("GPU Stats", "GPU Performance States", "GPUPH", withOff, active));
    channels.push_back(stateChannel("GPU Stats", "GPU Boost Controller Performance States",
                                    "BSTGPUPH", withOff, boost));
    channels.push_back(stateChannel("GPU Stats", "CLTM-induced GPU Performance States", "GPU_CLTM",
                                    limited, {{"NO_CLTM", 240}}));
    channels.push_back({.group = "GPU Stats",
                        .subgroup = "Active Time Histogram",
                        .name = "GPU Active Time",
                        .unit = "events",
                        .format = Channel::Format::histogram});
    channels.push_back({.group = "GPU Stats",
                        .subgroup = "UV Warn State",
                        .name = "UV Warn",
                        .unit = "events",
                        .perSecond = 3});
}

std::vector<std::uint8_t> table(const std::vector<std::uint32_t> &megahertz, std::uint32_t unit)
{
    std::vector<std::pair<std::uint32_t, std::uint32_t>> records;
    for (const std::uint32_t frequency : megahertz)
        records.emplace_back(frequency * unit, 781);
    return voltageStates(records);
}

constexpr std::uint32_t hertz = 1'000'000;
constexpr std::uint32_t kilohertz = 1'000;

Process process(int pid, const Text &name, std::uint64_t megabytes, const Text &path,
                std::vector<Text> arguments = {})
{
    arguments.insert(arguments.begin(), path);
    return {.pid = pid,
            .name = name,
            .footprint = megabytes << 20,
            .arguments = argumentBlock(path, arguments)};
}

std::vector<Process> commonProcesses()
{
    return {
        {.pid = 0, .name = "kernel_task", .inspectable = false},
        {.pid = 1, .name = "launchd", .footprint = 24 << 20, .inspectable = false},
        {.pid = 141, .name = "WindowServer", .footprint = 900 << 20, .inspectable = false},
        process(412, "Finder", 88, "/System/Library/CoreServices/Finder.app/Contents/MacOS/Finder"),
        process(420, "Dock", 61, "/System/Library/CoreServices/Dock.app/Contents/MacOS/Dock"),
        process(433, "Safari", 412, "/Applications/Safari.app/Contents/MacOS/Safari"),
        process(515, "Mail", 231, "/System/Applications/Mail.app/Contents/MacOS/Mail"),
        process(602, "Terminal", 74,
                "/System/Applications/Utilities/Terminal.app/Contents/MacOS/"
                "Terminal"),
        process(603, "zsh", 4, "/bin/zsh", {"-l"}),
        process(777, "ollama", 96, "/usr/local/bin/ollama", {"serve"}),
        process(801, "Corvane", 29, "/Applications/Corvane.app/Contents/MacOS/Corvane"),
        {.pid = 866, .name = "zsh", .footprint = 0}, // Ended, not yet collected.
    };
}

Machine::Load load(std::uint32_t user, std::uint32_t system)
{
    return {.user = user, .system = system, .idle = 100 - user - system};
}

} // namespace

Machine baseM1()
{
    Machine machine{
        .brand = "Apple M1",
        .memoryBytes = 16 * gibibyte,
        .statisticsWords = 38,
        .pages = {.free = 40'000,
                  .active = 300'000,
                  .inactive = 290'000,
                  .wired = 150'000,
                  .purgeable = 10'000,
                  .compressor = 120'000,
                  .external = 200'000},
        .swapTotal = 2 * gibibyte,
        .swapUsed = gibibyte / 2,
    };
    machine.cpus = {load(30, 20), load(40, 5), load(10, 10), load(20, 0),
                    load(0, 0),   load(75, 0), load(0, 0),   load(100, 0)};
    machine.cpus[3].nice = 30;
    machine.cpus[3].idle = 50;

    auto &channels = machine.channels;
    for (const char *part : {"EACC_CPU", "PACC0_CPU"}) {
        for (int cpu = 0; cpu < 4; ++cpu) {
            channels.push_back(energy(part + std::to_string(cpu), 150));
            channels.push_back(energy(part + std::to_string(cpu) + "_SRAM", 10));
        }
    }
    channels.push_back(energy("EACC_CPM", 90));
    channels.push_back(energy("PACC0_CPM", 210));
    channels.push_back(energy("EACC_CPU", 400));
    channels.push_back(energy("PACC0_CPU", 2000));
    channels.push_back(energy("CPU Energy", 2500));
    for (const char *part : {"GPU0", "GPU SRAM0"})
        channels.push_back(energy(part, 900));
    channels.push_back(energy("ANE", 120));
    for (const char *part : {"ISP0", "AVE0", "MSR0", "DCS0", "DRAM0", "AMCC0"})
        channels.push_back(energy(part, 300));
    channels.push_back(energy("apciec0 Energy", 1500, "uJ"));
    channels.push_back(energy("PCIe Port 0 Energy", 700, "uJ"));
    channels.push_back(energy("GPU Energy", 640 * million, "nJ"));

    const auto efficiency = voltageStateNames({"IDLE"}, 5);
    const auto performance = voltageStateNames({"IDLE"}, 15);
    channels.push_back(core("ECPU000", efficiency));
    channels.push_back(core("PCPU000", performance));
    channels.push_back(
        cluster("ECPU", efficiency, {{"IDLE", 120}, {"V1P3", 60}, {"V2P2", 30}, {"V4P0", 30}}));
    channels.push_back(cluster("ECPM", efficiency, {{"V1P3", 240}}));
    channels.push_back(
        cluster("PCPU", performance, {{"IDLE", 180}, {"V0P14", 20}, {"V4P10", 10}, {"V14P0", 30}}));
    channels.push_back(cluster("PCPM", performance, {{"V14P0", 240}}));
    appendGraphics(channels, {{"OFF", 120}, {"P1", 60}, {"P3", 40}, {"P5", 20}}, {{"P1", 240}});

    machine.tables = {
        {"voltage-states1-sram", table({600, 972, 1332, 1704, 2064}, hertz)},
        {"voltage-states5-sram",
         table({600, 828, 1056, 1284, 1500, 1728, 1956, 2184, 2388, 2592, 2772, 2988, 3096, 3144,
                3204},
               hertz)},
        {"voltage-states1", voltageStates({{71859, 781}, {51040, 781}})},
        {"voltage-states9", table({0, 389, 486, 648, 778, 972, 1296}, hertz)},
    };

    auto &sensors = machine.sensors;
    sensors = {{"eACC MTR Temp Sensor0", 40.0}, {"eACC MTR Temp Sensor3", 42.0}};
    double celsius = 45;
    for (const int number : {2, 3, 4, 5, 7, 8, 9})
        sensors.push_back({"pACC MTR Temp Sensor" + std::to_string(number), celsius++});
    sensors.insert(sensors.end(),
                   {{"GPU MTR Temp Sensor1", 27.0},
                    {"GPU MTR Temp Sensor4", 27.6},
                    {"SOC MTR Temp Sensor0", 31.0},
                    {"ANE MTR Temp Sensor1", 30.0},
                    {"ISP MTR Temp Sensor5", 30.0}});
    for (int number = 0; number < 3; ++number)
        sensors.push_back({"PMGR SOC Die Temp Sensor" + std::to_string(number), 29.0});
    int number = 1;
    for (const double die : {34.0, 34.5, 35.0, 35.5, 36.0, 36.5, 37.0, 37.0})
        sensors.push_back({"PMU tdie" + std::to_string(number++), die});
    number = 1;
    for (const double device : {30.0, 30.0, 30.0, -21.5, -21.5, 30.0, 30.0, 30.0})
        sensors.push_back({"PMU tdev" + std::to_string(number++), device});
    sensors.insert(sensors.end(),
                   {{"PMU TP3w", 37.1},
                    {"PMU2 TR0Z", 51.9},
                    {"PMU2 TR1d", 31.2},
                    {"PMU2 TR1l", 37.1},
                    {"PMU tcal", 51.9},
                    {"NAND CH0 temp", 28.0},
                    {"gas gauge battery", 30.0}});

    machine.processes = commonProcesses();
    machine.processes.push_back(
        process(910, "llama-server", 5200, "/opt/homebrew/bin/llama-server",
                {"-m", "/Users/somebody/models/Llama-3.1-8B-Instruct-Q4_K_M.gguf", "-c", "8192"}));
    return machine;
}

Machine maxM4()
{
    Machine machine{
        .brand = "Apple M4 Max",
        .memoryBytes = 128 * gibibyte,
        .statisticsWords = 40,
        .pages = {.free = 2'000'000,
                  .active = 2'400'000,
                  .inactive = 2'300'000,
                  .wired = 900'000,
                  .purgeable = 100'000,
                  .compressor = 300'000,
                  .external = 1'500'000},
        .hasReportingFramework = false,
    };
    machine.cpus.assign(16, load(35, 5));

    auto &channels = machine.channels;
    for (const char *part : {"EACC_CPU", "PACC0_CPU", "PACC1_CPU"}) {
        for (int cpu = 0; cpu < (part[0] == 'E' ? 4 : 6); ++cpu) {
            channels.push_back(energy(part + std::to_string(cpu), 1200));
            channels.push_back(energy(part + std::to_string(cpu) + "_SRAM", 60));
        }
        channels.push_back(energy(part, 7000));
    }
    for (const char *part : {"EACC_CPM", "PACC0_CPM", "PACC1_CPM"})
        channels.push_back(energy(part, 300));
    channels.push_back(energy("CPU Energy", 24'000));
    // Such names are listed twice.
    for (int twice = 0; twice < 2; ++twice) {
        for (int detail = 0; detail < 110; ++detail)
            channels.push_back(energy("PCPUDTL" + std::to_string(detail), 20));
    }
    for (const char *part :
         {"GPU0", "GPU SRAM0", "ISP0", "AVE0", "AVE1", "MSR0", "DCS0", "DRAM0", "AMCC0"})
        channels.push_back(energy(part, 2000));
    channels.push_back(energy("ANE0", 1500));
    for (int port = 0; port < 16; ++port)
        channels.push_back(energy("PCIe Port " + std::to_string(port) + " Energy", 90, "uJ"));
    channels.push_back(energy("GPU Energy", 18'500 * million, "nJ"));

    const auto efficiency = voltageStateNames({"DOWN", "IDLE"}, 7);
    const auto performance = voltageStateNames({"DOWN", "IDLE"}, 19);
    const auto efficiencyIdle = voltageStateNames({"DOWN", "NON_IDLE"}, 7);
    const auto performanceIdle = voltageStateNames({"DOWN", "NON_IDLE"}, 19);
    channels.push_back(core("PCPU120", performance));
    channels.push_back(
        cluster("ECPU", efficiency,
                {{"DOWN", 40}, {"IDLE", 80}, {"V0P6", 60}, {"V3P3", 40}, {"V6P0", 20}}));
    channels.push_back(cluster("ECPM", efficiency, {{"IDLE", 20}, {"V0P6", 220}}));
    channels.push_back(cluster("ECPM_IDLE", efficiencyIdle, {{"NON_IDLE", 240}}));
    channels.push_back(
        cluster("PCPU", performance, {{"IDLE", 120}, {"V0P18", 40}, {"V10P8", 40}, {"V18P0", 40}}));
    channels.push_back(cluster("PCPM", performance, {{"IDLE", 40}, {"V18P0", 200}}));
    channels.push_back(cluster("PCPM_IDLE", performanceIdle, {{"NON_IDLE", 180}, {"V0P18", 60}}));
    channels.push_back(cluster("PCPU1", performance, {{"DOWN", 200}, {"IDLE", 10}, {"V18P0", 30}}));
    channels.push_back(cluster("PCPM1", performance, {{"DOWN", 160}, {"V0P18", 80}}));
    channels.push_back(cluster("PCPM1_IDLE", performanceIdle, {{"DOWN", 160}, {"NON_IDLE", 80}}));
    appendGraphics(channels, {{"OFF", 24}, {"P1", 36}, {"P8", 60}, {"P12", 120}},
                   {{"P1", 40}, {"P12", 200}});

    const std::vector<std::uint32_t> performanceTable{1260, 1512, 1800, 2088, 2352, 2616, 2868,
                                                      3096, 3300, 3468, 3624, 3756, 3876, 3936,
                                                      3984, 4044, 4104, 4416, 4512};
    machine.tables = {
        {"voltage-states1-sram", table({1020, 1404, 1788, 2112, 2352, 2532, 2592}, kilohertz)},
        {"voltage-states5-sram", table(performanceTable, kilohertz)},
        {"voltage-states13-sram", table(performanceTable, kilohertz)},
        {"voltage-states9-sram", table({0, 338, 618, 796, 924, 1056, 1578}, hertz)},
    };

    auto &sensors = machine.sensors;
    for (int round = 0; round < 2; ++round) {
        for (int die = 0; die <= 10; ++die)
            sensors.push_back({"PMU tdie" + std::to_string(die), round == 0 ? 50.0 : 60.0 + die});
        double celsius = 70;
        for (const char *point : {"TP0s", "TP1g", "TP1s", "TP2g", "TP2s", "TP3g"})
            sensors.push_back({Text("PMU ") + point, round == 0 ? 40.0 : celsius++});
        for (int device = 1; device <= 8; ++device)
            sensors.push_back({"PMU tdev" + std::to_string(device), 30.0});
        sensors.push_back({"PMU tcal", 51.9});
    }
    for (int gauge = 0; gauge < 6; ++gauge)
        sensors.push_back({"gas gauge battery", 31.0});
    sensors.push_back({"NAND CH0 temp", 44.0});
    sensors.push_back({std::nullopt, 0.0});

    machine.processes = commonProcesses();
    machine.processes.push_back(
        process(1203, "ollama", 43'000, "/usr/local/bin/ollama",
                {"runner", "--model",
                 "/Users/somebody/.ollama/models/blobs/sha256-dde5aa3fc5ffc17176b5e8bdc82f587b24b2",
                 "--ctx-size", "8192"}));
    machine.processes.push_back(
        process(1377, "python3.12", 18'400, "/opt/homebrew/bin/python3.12",
                {"-m", "mlx_lm.server", "--model", "mlx-community/Qwen2.5-32B-Instruct-4bit"}));
    return machine;
}

Machine ultraM2()
{
    Machine machine{
        .brand = "Apple M2 Ultra",
        .memoryBytes = 192 * gibibyte,
        .statisticsWords = 62,
        .pages = {.free = 200'000,
                  .active = 6'000'000,
                  .inactive = 3'000'000,
                  .wired = 1'800'000,
                  .purgeable = 50'000,
                  .compressor = 900'000,
                  .external = 1'200'000},
        .swapTotal = 8 * gibibyte,
        .swapUsed = 3 * gibibyte,
        .pressureLevel = 2,
    };
    machine.cpus.assign(24, load(20, 5));

    auto &channels = machine.channels;
    for (const char *die : {"DIE_0_", "DIE_1_"}) {
        for (const char *part : {"EACC_CPU", "PACC0_CPU", "PACC1_CPU"}) {
            for (int cpu = 0; cpu < 4; ++cpu) {
                channels.push_back(energy(die + (part + std::to_string(cpu)), 700));
                channels.push_back(energy(die + (part + std::to_string(cpu)) + "_SRAM", 40));
            }
        }
        channels.push_back(energy(Text(die) + "EACC_CPM", 150));
        channels.push_back(energy(Text(die) + "CPU Energy", die[4] == '0' ? 15'000 : 3'200));
    }
    for (const char *die : {"_0", "_1"}) {
        if (die[1] == '0') {
            for (const char *part : {"GPU0", "GPU CS0", "GPU SRAM0", "GPU CS SRAM0"})
                channels.push_back(energy(Text(part) + die, 260));
        }
        channels.push_back(energy(Text("ANE0") + die, die[1] == '0' ? 100 : 50));
        for (const char *part : {"ISP0", "AVE0", "MSR0", "DCS0", "DRAM0", "AMCC0"})
            channels.push_back(energy(Text(part) + die, 400));
    }
    channels.push_back(energy("GPU Energy", 270 * million, "nJ"));

    const auto efficiency = voltageStateNames({"IDLE"}, 6);
    const auto performance = voltageStateNames({"IDLE"}, 17);
    const States idle{{"IDLE", 240}};
    channels.push_back(core("DIE_0_ECPU_CPU2", efficiency));
    channels.push_back(cluster("DIE_0_ECPU", efficiency,
                               {{"IDLE", 60}, {"V0P5", 60}, {"V2P3", 60}, {"V5P0", 60}}));
    channels.push_back(cluster("DIE_0_ECPM", efficiency, {{"V0P5", 240}}));
    channels.push_back(
        cluster("DIE_0_PCPU", performance, {{"IDLE", 120}, {"V0P16", 60}, {"V16P0", 60}}));
    channels.push_back(cluster("DIE_0_PCPM", performance, {{"V0P16", 240}}));
    channels.push_back(cluster("DIE_0_PCPU1", performance, idle));
    channels.push_back(cluster("DIE_0_PCPM1", performance, {{"IDLE", 120}, {"V0P16", 120}}));
    channels.push_back(cluster("DIE_1_ECPU", efficiency, idle));
    channels.push_back(cluster("DIE_1_ECPM", efficiency, idle));
    channels.push_back(cluster("DIE_1_PCPU", performance, {{"IDLE", 200}, {"V16P0", 40}}));
    channels.push_back(cluster("DIE_1_PCPM", performance, idle));
    channels.push_back(cluster("DIE_1_PCPU1", performance, idle));
    channels.push_back(cluster("DIE_1_PCPM1", performance, idle));
    appendGraphics(channels, {{"OFF", 204}, {"P1", 6}, {"P5", 30}}, {{"P1", 240}});

    machine.tables = {
        {"voltage-states1-sram",
         voltageStates({{912'000'000, 590},
                        {1'284'000'000, 625},
                        {1'752'000'000, 678},
                        {2'004'000'000, 706},
                        {2'256'000'000, 778},
                        {2'424'000'000, 831}})},
        {"voltage-states5-sram",
         table({702, 948, 1188, 1452, 1704, 1968, 2208, 2400, 2568, 2724, 2868, 3000, 3132, 3264,
                3360, 3408, 3504},
               hertz)},
    };

    machine.sensors = {{"NAND CH0 temp", 42.0}, {"PMU TP0s", 59.42}, {"PMU TP0s", 59.60},
                       {"PMU TP0s", 59.68},     {"PMU TP0s", 59.60}, {"PMU TP1s", 60.4},
                       {"PMU tdie1", 48.0},     {"PMU tdie2", 50.0}, {"PMU tcal", 51.9}};

    machine.processes = commonProcesses();
    machine.processes.push_back(
        process(2210, "llama-server", 108'000, "/opt/homebrew/bin/llama-server",
                {"--model", "/Volumes/Models/Mistral-Large-Instruct-Q6_K.gguf"}));
    machine.processes.push_back(
        process(2304, "LM Studio", 640, "/Applications/LM Studio.app/Contents/MacOS/LM Studio"));
    return machine;
}

Machine proM5()
{
    Machine machine{
        .brand = "Apple M5 Pro",
        .memoryBytes = 48 * gibibyte,
        .statisticsWords = 62,
        .pages = {.free = 600'000,
                  .active = 900'000,
                  .inactive = 850'000,
                  .wired = 350'000,
                  .purgeable = 40'000,
                  .compressor = 120'000,
                  .external = 500'000},
        .hasReportingFramework = false,
    };
    machine.cpus.assign(18, load(20, 5));

    constexpr double secondsOfBatch = 2.1;
    auto &channels = machine.channels;
    for (const char *part : {"MCPU0", "MCPU1", "PCPU"}) {
        for (int cpu = 0; cpu < 6; ++cpu)
            channels.push_back(energy(part + std::to_string(cpu), 400));
    }
    channels.push_back(energy("DIE0 CPU Energy", 12'000));
    for (const char *part : {"GPU0", "GPU SRAM0", "ISP0", "AVE0", "DCS0", "DRAM0", "AMCC0"})
        channels.push_back(energy(part, 1000));
    channels.push_back(energy("ANE0", 800));
    for (Channel &channel : channels)
        channel.publishedEvery = secondsOfBatch;
    channels.push_back(energy("GPU Energy", 9'000 * million, "nJ"));

    const auto slower = voltageStateNames({"DOWN", "IDLE"}, 15);
    const auto faster = voltageStateNames({"DOWN", "IDLE"}, 15);
    channels.push_back(core("MCPU000", slower));
    channels.push_back(
        cluster("DIE0 MCPU0", slower, {{"DOWN", 60}, {"IDLE", 60}, {"V0P14", 60}, {"V14P0", 60}}));
    channels.push_back(cluster("DIE0 MCPM0", slower, {{"V0P14", 240}}));
    channels.push_back(cluster("DIE0 MCPU1", slower, {{"DOWN", 180}, {"V0P14", 60}}));
    channels.push_back(cluster("DIE0 MCPM1", slower, {{"V0P14", 240}}));
    channels.push_back(cluster("DIE0 PCPU", faster, {{"IDLE", 180}, {"V14P0", 60}}));
    channels.push_back(cluster("DIE0 PCPM", faster, {{"V14P0", 240}}));
    appendGraphics(channels, {{"OFF", 180}, {"P1", 40}, {"P6", 20}}, {{"P1", 240}});

    const std::vector<std::uint32_t> slowerTable{1344, 1644, 1992, 2304, 2652, 2964, 3240, 3504,
                                                 3696, 3876, 4044, 4176, 4284, 4308, 4380};
    // Tables 22 and 23 are of the lower tier, 5 is of the upper one.
    machine.tables = {
        {"voltage-states22-sram", table(slowerTable, kilohertz)},
        {"voltage-states23-sram", table(slowerTable, kilohertz)},
        {"voltage-states5-sram",
         table({1308, 1620, 1980, 2292, 2580, 2880, 3180, 3432, 3648, 3828, 3984, 4104, 4188, 4236,
                4608},
               kilohertz)},
        {"acc-clusters", voltageStates({{22, 0}, {23, 0}, {5, 1}})},
        {"voltage-states9-sram", table({0, 338, 618, 796, 924, 1056, 1578}, hertz)},
    };

    for (int die = 0; die <= 8; ++die)
        machine.sensors.push_back({"PMU tdie" + std::to_string(die), 41.0 + die});
    for (const char *point : {"TP0s", "TP1s", "TP2s"})
        machine.sensors.push_back({Text("PMU ") + point, 52.0});
    machine.sensors.insert(machine.sensors.end(), {{"PMU tcal", 51.9}, {"NAND CH0 temp", 38.0}});

    machine.processes = commonProcesses();
    machine.processes.push_back(
        process(1490, "llama-server", 21'000, "/opt/homebrew/bin/llama-server",
                {"-m", "/Users/somebody/models/Qwen2.5-32B-Instruct-Q4_K_M.gguf"}));
    return machine;
}

std::optional<Machine> machineNamed(const std::string &name)
{
    if (name == "m1")
        return baseM1();
    if (name == "max")
        return maxM4();
    if (name == "ultra")
        return ultraM2();
    if (name == "m5pro")
        return proM5();
    return std::nullopt;
}

} // namespace corvane::simulated
