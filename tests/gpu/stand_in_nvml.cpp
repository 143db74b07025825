// Stands in for NVIDIA's management library. What its functions return comes from the file
// "script" in the folder that CORVANE_STAND_IN names, one line for each function:
//
//   function value …             it succeeds with this value, or these
//   function fails code          it returns this code
//   function stalls fifo         it waits until someone opens the FIFO for writing, then succeeds
//
// "function@1" is the line for the second device alone. Each call is added to the file "calls"
// there. The values of lists of processes are number and bytes ("none": not available) of each,
// those of their loads number, microseconds and per cent.
//
// Without a variant it has the functions of a driver of today. STAND_IN_OLD has the first version
// of each function, STAND_IN_MIDDLE the second one of the lists of processes, STAND_IN_NEW lacks
// what is deprecated, STAND_IN_BARE a function that cannot be done without.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

std::string pathOf(const char *file)
{
    const char *folder = std::getenv("CORVANE_STAND_IN");
    return std::string(folder ? folder : ".") + "/" + file;
}

using Values = std::vector<unsigned long long>;

constexpr int invalidArgument = 2;
[[maybe_unused]] constexpr int notFound = 6;
constexpr int insufficientSize = 7;
[[maybe_unused]] constexpr int versionMismatch = 25;
constexpr unsigned long long notAvailable = ~0ULL;

struct Answer {
    int result = 0;
    Values values = {};
};

/// Devices are their index + 1.
unsigned long indexOf(void *device)
{
    return reinterpret_cast<unsigned long>(device) - 1;
}

/// The rest of the script's line of that name.
std::vector<std::string> scriptOf(const std::string &wanted)
{
    std::ifstream script(pathOf("script"));
    std::string line;
    while (std::getline(script, line)) {
        std::istringstream words(line);
        std::string name;
        if (words >> name && name == wanted)
            return {std::istream_iterator<std::string>(words), {}};
    }
    return {};
}

Answer answerOf(const std::string &function, const Values &usual = {}, void *device = nullptr)
{
    std::vector<std::string> words;
    if (device)
        words = scriptOf(function + '@' + std::to_string(indexOf(device)));
    if (words.empty())
        words = scriptOf(function);
    // Who sees the call may change the script at once.
    std::ofstream(pathOf("calls"), std::ios::app) << function << std::endl;
    if (words.empty())
        return {0, usual};
    if (words[0] == "fails")
        return {std::stoi(words.at(1)), usual};
    if (words[0] == "stalls") {
        close(open(words.at(1).c_str(), O_RDONLY | O_CLOEXEC));
        return {0, usual};
    }
    Values values;
    for (const std::string &word : words)
        values.push_back(word == "none" ? notAvailable : std::stoull(word));
    return {0, values};
}

template <typename Number>
int give(const char *function, unsigned long long usual, Number *into, void *device = nullptr)
{
    const Answer answer = answerOf(function, {usual}, device);
    if (answer.result == 0)
        *into = static_cast<Number>(answer.values.at(0));
    return answer.result;
}

/// Says how many there are where they do not fit, as the real one does.
template <typename Element, typename Fill>
int giveList(const Values &values, std::size_t width, unsigned int *count, Element *into, Fill fill)
{
    const auto needed = static_cast<unsigned int>(values.size() / width);
    const unsigned int room = std::exchange(*count, needed);
    if (needed > room)
        return insufficientSize;
    for (unsigned int place = 0; place < needed; ++place)
        fill(into[place], &values[place * width]);
    return 0;
}

template <typename Info>
int giveProcesses(const char *function, const Values &usual, void *device, unsigned int *count,
                  Info *into)
{
    const Answer answer = answerOf(function, usual, device);
    if (answer.result != 0)
        return answer.result;
    return giveList(answer.values, 2, count, into,
                    [](Info &info, const unsigned long long *values) {
                        std::memset(&info, 0xff, sizeof info);
                        info.pid = static_cast<unsigned int>(values[0]);
                        info.bytes = values[1];
                    });
}

/// Number, microseconds and per cent of those that are newer.
[[maybe_unused]] Values newer(const Values &values, unsigned long long after)
{
    Values found;
    for (std::size_t place = 0; place + 2 < values.size(); place += 3) {
        if (values[place + 1] > after)
            found.insert(found.end(), values.begin() + std::ptrdiff_t(place),
                         values.begin() + std::ptrdiff_t(place) + 3);
    }
    return found;
}

int giveDevice(const char *function, unsigned int index, void **device)
{
    *device = reinterpret_cast<void *>(static_cast<unsigned long>(index) + 1);
    return answerOf(function, {}, *device).result;
}

struct PCIInfo {
    char legacyAddress[16];
    unsigned int numbers[5];
    char address[32];
};

struct Utilization {
    unsigned int gpu;
    unsigned int memory;
};

struct VersionedTemperature {
    unsigned int version;
    int sensor;
    int temperature;
};

struct Memory {
    unsigned long long total;
    unsigned long long free;
    unsigned long long used;
};

struct Memory2 {
    unsigned int version;
    unsigned long long total;
    unsigned long long reserved;
    unsigned long long free;
    unsigned long long used;
};

struct ProcessInfo1 {
    unsigned int pid;
    unsigned long long bytes;
};

struct ProcessInfo {
    unsigned int pid;
    unsigned long long bytes;
    unsigned int instances[2];
};

struct ProcessSample {
    unsigned int pid;
    unsigned long long microseconds;
    unsigned int shares[4];
};

struct NewProcessSample {
    unsigned long long microseconds;
    unsigned int pid;
    unsigned int shares[6];
};

struct NewProcessSamples {
    unsigned int version;
    unsigned int count;
    unsigned long long after;
    NewProcessSample *samples;
};

/// Bytes: total, reserved, free. 9 GB are in use.
const Values usualMemory = {24'000'000'000, 500'000'000, 14'500'000'000};
const Values usualCompute = {100, 6'000'000'000, 101, 2'000'000'000};
const Values usualGraphics = {100, 6'100'000'000, 200, 300'000'000};
const Values usualLoads = {100, 5'000, 35, 200, 5'000, 2};

} // namespace

#ifdef STAND_IN_OLD

EXPORTED int nvmlInit()
{
    return answerOf("nvmlInit").result;
}

EXPORTED int nvmlDeviceGetCount(unsigned int *count)
{
    return give("nvmlDeviceGetCount", 1, count);
}

EXPORTED int nvmlDeviceGetHandleByIndex(unsigned int index, void **device)
{
    return giveDevice("nvmlDeviceGetHandleByIndex", index, device);
}

/// The old structure ends behind the numbers.
EXPORTED int nvmlDeviceGetPciInfo_v2(void *device, PCIInfo *info)
{
    std::snprintf(info->legacyAddress, sizeof info->legacyAddress, "0000:%02lx:00.0",
                  indexOf(device) + 1);
    return answerOf("nvmlDeviceGetPciInfo_v2", {}, device).result;
}

#else

EXPORTED int nvmlInit_v2()
{
    return answerOf("nvmlInit_v2").result;
}

EXPORTED int nvmlDeviceGetCount_v2(unsigned int *count)
{
    return give("nvmlDeviceGetCount_v2", 1, count);
}

EXPORTED int nvmlDeviceGetHandleByIndex_v2(unsigned int index, void **device)
{
    return giveDevice("nvmlDeviceGetHandleByIndex_v2", index, device);
}

EXPORTED int nvmlDeviceGetPciInfo_v3(void *device, PCIInfo *info)
{
    // The script's values are the numbers of bus and domain.
    const Answer answer = answerOf("nvmlDeviceGetPciInfo_v3", {indexOf(device) + 1, 0}, device);
    std::memset(info, 'x', sizeof *info);
    std::snprintf(info->address, sizeof info->address, "%08llx:%02llx:00.0", answer.values.at(1),
                  answer.values.at(0));
    return answer.result;
}

#endif

#ifndef STAND_IN_BARE
EXPORTED int nvmlShutdown()
{
    return answerOf("nvmlShutdown").result;
}
#endif

EXPORTED int nvmlDeviceGetName(void *device, char *name, unsigned int size)
{
    // The script's value is a number, to tell devices apart.
    const Answer answer = answerOf("nvmlDeviceGetName", {4090}, device);
    if (answer.result == 0)
        std::snprintf(name, size, "NVIDIA GeForce RTX %llu", answer.values.at(0));
    return answer.result;
}

EXPORTED int nvmlDeviceGetUtilizationRates(void *device, Utilization *rates)
{
    rates->memory = 99;
    return give("nvmlDeviceGetUtilizationRates", 40, &rates->gpu, device);
}

#ifdef STAND_IN_NEW
EXPORTED int nvmlDeviceGetTemperatureV(void *device, VersionedTemperature *temperature)
{
    if (temperature->version != 0x0100000c || temperature->sensor != 0)
        return versionMismatch;
    return give("nvmlDeviceGetTemperatureV", 62, &temperature->temperature, device);
}
#else
EXPORTED int nvmlDeviceGetTemperature(void *device, int, unsigned int *celsius)
{
    return give("nvmlDeviceGetTemperature", 61, celsius, device);
}
#endif

EXPORTED int nvmlDeviceGetPowerUsage(void *device, unsigned int *milliwatts)
{
    return give("nvmlDeviceGetPowerUsage", 75'500, milliwatts, device);
}

EXPORTED int nvmlDeviceGetEnforcedPowerLimit(void *device, unsigned int *milliwatts)
{
    return give("nvmlDeviceGetEnforcedPowerLimit", 450'000, milliwatts, device);
}

EXPORTED int nvmlDeviceGetPerformanceState(void *device, int *state)
{
    return give("nvmlDeviceGetPerformanceState", 2, state, device);
}

EXPORTED int nvmlDeviceGetClockInfo(void *device, int type, unsigned int *megahertz)
{
    return type == 0 ? give("nvmlDeviceGetClockInfo", 2610, megahertz, device) : invalidArgument;
}

EXPORTED int nvmlDeviceGetMemoryInfo(void *device, Memory *memory)
{
    const Answer answer = answerOf("nvmlDeviceGetMemoryInfo", usualMemory, device);
    if (answer.result == 0) {
        memory->total = answer.values.at(0);
        memory->free = answer.values.at(2);
        memory->used = memory->total - memory->free;
    }
    return answer.result;
}

/// In every version of the library the structure of the first version.
EXPORTED int nvmlDeviceGetComputeRunningProcesses(void *device, unsigned int *count,
                                                  ProcessInfo1 *infos)
{
    return giveProcesses("nvmlDeviceGetComputeRunningProcesses", usualCompute, device, count,
                         infos);
}

EXPORTED int nvmlDeviceGetGraphicsRunningProcesses(void *device, unsigned int *count,
                                                   ProcessInfo1 *infos)
{
    return giveProcesses("nvmlDeviceGetGraphicsRunningProcesses", usualGraphics, device, count,
                         infos);
}

#ifdef STAND_IN_OLD

EXPORTED int nvmlDeviceGetCurrentClocksThrottleReasons(void *device, unsigned long long *reasons)
{
    return give("nvmlDeviceGetCurrentClocksThrottleReasons", 1, reasons, device);
}

#else

EXPORTED int nvmlDeviceGetCurrentClocksEventReasons(void *device, unsigned long long *reasons)
{
    return give("nvmlDeviceGetCurrentClocksEventReasons", 1, reasons, device);
}

EXPORTED int nvmlDeviceGetTotalEnergyConsumption(void *device, unsigned long long *millijoules)
{
    return give("nvmlDeviceGetTotalEnergyConsumption", 5'000'000, millijoules, device);
}

EXPORTED int nvmlDeviceGetMemoryInfo_v2(void *device, Memory2 *memory)
{
    if (memory->version != 0x02000028)
        return versionMismatch;
    const Answer answer = answerOf("nvmlDeviceGetMemoryInfo_v2", usualMemory, device);
    if (answer.result == 0) {
        memory->total = answer.values.at(0);
        memory->reserved = answer.values.at(1);
        memory->free = answer.values.at(2);
        memory->used = memory->total - memory->free; // With what is reserved.
    }
    return answer.result;
}

EXPORTED int nvmlDeviceGetProcessUtilization(void *device, ProcessSample *samples,
                                             unsigned int *count, unsigned long long after)
{
    const Answer answer = answerOf("nvmlDeviceGetProcessUtilization", usualLoads, device);
    if (answer.result != 0)
        return answer.result;
    const Values found = newer(answer.values, after);
    if (found.empty())
        return notFound;
    return giveList(found, 3, count, samples,
                    [](ProcessSample &sample, const unsigned long long *values) {
                        sample = {.pid = static_cast<unsigned int>(values[0]),
                                  .microseconds = values[1],
                                  .shares = {static_cast<unsigned int>(values[2]), 90, 91, 92}};
                    });
}

EXPORTED int nvmlDeviceGetProcessesUtilizationInfo(void *device, NewProcessSamples *request)
{
    if (request->version != 0x01000018)
        return versionMismatch;
    const Answer answer = answerOf("nvmlDeviceGetProcessesUtilizationInfo", usualLoads, device);
    if (answer.result != 0)
        return answer.result;
    const Values found = newer(answer.values, request->after);
    if (found.empty())
        return notFound;
    return giveList(found, 3, &request->count, request->samples,
                    [](NewProcessSample &sample, const unsigned long long *values) {
                        sample = {
                            .microseconds = values[1],
                            .pid = static_cast<unsigned int>(values[0]),
                            .shares = {static_cast<unsigned int>(values[2]), 90, 91, 92, 93, 94}};
                    });
}

#ifdef STAND_IN_MIDDLE
#define SECOND_OR_THIRD(name) name##_v2
#define SECOND_OR_THIRD_NAME(name) #name "_v2"
#else
#define SECOND_OR_THIRD(name) name##_v3
#define SECOND_OR_THIRD_NAME(name) #name "_v3"
#endif

EXPORTED int SECOND_OR_THIRD(nvmlDeviceGetComputeRunningProcesses)(void *device,
                                                                   unsigned int *count,
                                                                   ProcessInfo *infos)
{
    return giveProcesses(SECOND_OR_THIRD_NAME(nvmlDeviceGetComputeRunningProcesses), usualCompute,
                         device, count, infos);
}

EXPORTED int SECOND_OR_THIRD(nvmlDeviceGetGraphicsRunningProcesses)(void *device,
                                                                    unsigned int *count,
                                                                    ProcessInfo *infos)
{
    return giveProcesses(SECOND_OR_THIRD_NAME(nvmlDeviceGetGraphicsRunningProcesses), usualGraphics,
                         device, count, infos);
}

#endif
