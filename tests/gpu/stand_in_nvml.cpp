// Stands in for NVIDIA's management library. What its functions return comes from the file
// "script" in the folder that CORVANE_STAND_IN names, one line for each function:
//
//   function value               it succeeds with this value
//   function fails code          it returns this code
//   function stalls fifo         it waits until someone opens the FIFO for writing, then succeeds
//
// Each call is added to the file "calls" there. STAND_IN_OLD leaves the functions of newer versions
// out, STAND_IN_NEW the deprecated one, STAND_IN_BARE one that cannot be done without.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

std::string pathOf(const char *file)
{
    const char *folder = std::getenv("CORVANE_STAND_IN");
    return std::string(folder ? folder : ".") + "/" + file;
}

struct Answer {
    int result = 0;
    unsigned long long value = 0;
};

/// The rest of the script's line for a function: one or two words.
std::istringstream scriptOf(const std::string &function)
{
    std::ifstream script(pathOf("script"));
    std::string line;
    while (std::getline(script, line)) {
        std::istringstream words(line);
        std::string name;
        if (words >> name && name == function)
            return words;
    }
    return {};
}

Answer answerOf(const std::string &function, unsigned long long usual)
{
    std::istringstream words = scriptOf(function);
    // Who sees the call may change the script at once.
    std::ofstream(pathOf("calls"), std::ios::app) << function << std::endl;
    std::string word;
    std::string detail;
    words >> word >> detail;
    if (word.empty())
        return {0, usual};
    if (word == "fails")
        return {std::stoi(detail), usual};
    if (word != "stalls")
        return {0, std::stoull(word)};
    close(open(detail.c_str(), O_RDONLY | O_CLOEXEC));
    return {0, usual};
}

template <typename Number>
int give(const char *function, unsigned long long usual, Number *into)
{
    const Answer answer = answerOf(function, usual);
    if (answer.result == 0)
        *into = static_cast<Number>(answer.value);
    return answer.result;
}

/// Devices are their index + 1.
unsigned long indexOf(void *device)
{
    return reinterpret_cast<unsigned long>(device) - 1;
}

int giveDevice(const char *function, unsigned int index, void **device)
{
    *device = reinterpret_cast<void *>(static_cast<unsigned long>(index) + 1);
    return answerOf(function, 0).result;
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

} // namespace

#ifdef STAND_IN_OLD

EXPORTED int nvmlInit()
{
    return answerOf("nvmlInit", 0).result;
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
    return answerOf("nvmlDeviceGetPciInfo_v2", 0).result;
}

#else

EXPORTED int nvmlInit_v2()
{
    return answerOf("nvmlInit_v2", 0).result;
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
    std::memset(info, 'x', sizeof *info);
    std::snprintf(info->address, sizeof info->address, "00000000:%02lx:00.0", indexOf(device) + 1);
    return answerOf("nvmlDeviceGetPciInfo_v3", 0).result;
}

#endif

#ifndef STAND_IN_BARE
EXPORTED int nvmlShutdown()
{
    return answerOf("nvmlShutdown", 0).result;
}
#endif

EXPORTED int nvmlDeviceGetUtilizationRates(void *, Utilization *rates)
{
    rates->memory = 99;
    return give("nvmlDeviceGetUtilizationRates", 40, &rates->gpu);
}

#ifdef STAND_IN_NEW
EXPORTED int nvmlDeviceGetTemperatureV(void *, VersionedTemperature *temperature)
{
    constexpr int versionMismatch = 25;
    if (temperature->version != 0x0100000c || temperature->sensor != 0)
        return versionMismatch;
    return give("nvmlDeviceGetTemperatureV", 62, &temperature->temperature);
}
#else
EXPORTED int nvmlDeviceGetTemperature(void *, int, unsigned int *celsius)
{
    return give("nvmlDeviceGetTemperature", 61, celsius);
}
#endif

#ifndef STAND_IN_OLD
EXPORTED int nvmlDeviceGetTotalEnergyConsumption(void *, unsigned long long *millijoules)
{
    return give("nvmlDeviceGetTotalEnergyConsumption", 5'000'000, millijoules);
}
#endif

EXPORTED int nvmlDeviceGetPowerUsage(void *, unsigned int *milliwatts)
{
    return give("nvmlDeviceGetPowerUsage", 75'500, milliwatts);
}

EXPORTED int nvmlDeviceGetPerformanceState(void *, int *state)
{
    return give("nvmlDeviceGetPerformanceState", 2, state);
}
