// Stands in for NVIDIA's management library: each call takes its result and what it fills in from
// the bytes that it was given, and succeeds with zeros when they are used up.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

const std::uint8_t *bytes = nullptr;
std::size_t left = 0;

/// Half of the calls succeed, the others return any code.
int answer(void *into, std::size_t size)
{
    const int code = left > 0 ? *bytes : 0;
    if (left > 0) {
        ++bytes;
        --left;
    }
    if (code >= 128)
        return code - 128;
    const std::size_t taken = std::min(size, left);
    std::memset(into, 0, size);
    std::memcpy(into, bytes, taken);
    bytes += taken;
    left -= taken;
    return 0;
}

/// Any count, and elements as far as there is room.
int answerList(unsigned int *count, void *elements, std::size_t size)
{
    const std::size_t room = *count * size;
    std::uint8_t told = 0;
    if (const int code = answer(&told, sizeof told)) {
        *count = 1000;
        return code;
    }
    *count = told > 250 ? ~0u : told;
    return answer(elements, std::min<std::size_t>(room, told * size));
}

struct NewProcessSamples {
    unsigned int version;
    unsigned int count;
    unsigned long long after;
    void *samples;
};

} // namespace

EXPORTED void setAnswers(const std::uint8_t *data, std::size_t size)
{
    bytes = data;
    left = size;
}

EXPORTED int nvmlInit_v2()
{
    return answer(nullptr, 0);
}

EXPORTED int nvmlShutdown()
{
    return 0;
}

EXPORTED int nvmlDeviceGetCount_v2(unsigned int *count)
{
    return answer(count, sizeof *count);
}

EXPORTED int nvmlDeviceGetHandleByIndex_v2(unsigned int, void **device)
{
    return answer(device, sizeof *device);
}

EXPORTED int nvmlDeviceGetPciInfo_v3(void *, void *info)
{
    return answer(info, 68);
}

EXPORTED int nvmlDeviceGetUtilizationRates(void *, unsigned int *shares)
{
    return answer(shares, 2 * sizeof *shares);
}

EXPORTED int nvmlDeviceGetPerformanceState(void *, int *state)
{
    return answer(state, sizeof *state);
}

EXPORTED int nvmlDeviceGetTemperature(void *, int, unsigned int *celsius)
{
    return answer(celsius, sizeof *celsius);
}

EXPORTED int nvmlDeviceGetTemperatureV(void *, void *temperature)
{
    return answer(static_cast<char *>(temperature) + 8, 4);
}

EXPORTED int nvmlDeviceGetPowerUsage(void *, unsigned int *milliwatts)
{
    return answer(milliwatts, sizeof *milliwatts);
}

EXPORTED int nvmlDeviceGetTotalEnergyConsumption(void *, unsigned long long *millijoules)
{
    return answer(millijoules, sizeof *millijoules);
}

EXPORTED int nvmlDeviceGetName(void *, char *name, unsigned int size)
{
    return answer(name, size);
}

EXPORTED int nvmlDeviceGetClockInfo(void *, int, unsigned int *megahertz)
{
    return answer(megahertz, sizeof *megahertz);
}

EXPORTED int nvmlDeviceGetEnforcedPowerLimit(void *, unsigned int *milliwatts)
{
    return answer(milliwatts, sizeof *milliwatts);
}

EXPORTED int nvmlDeviceGetCurrentClocksEventReasons(void *, unsigned long long *reasons)
{
    return answer(reasons, sizeof *reasons);
}

EXPORTED int nvmlDeviceGetMemoryInfo(void *, void *memory)
{
    return answer(memory, 24);
}

EXPORTED int nvmlDeviceGetMemoryInfo_v2(void *, void *memory)
{
    return answer(static_cast<char *>(memory) + 8, 32);
}

EXPORTED int nvmlDeviceGetComputeRunningProcesses_v3(void *, unsigned int *count, void *infos)
{
    return answerList(count, infos, 24);
}

EXPORTED int nvmlDeviceGetGraphicsRunningProcesses_v3(void *, unsigned int *count, void *infos)
{
    return answerList(count, infos, 24);
}

EXPORTED int nvmlDeviceGetProcessUtilization(void *, void *samples, unsigned int *count,
                                             unsigned long long)
{
    return answerList(count, samples, 32);
}

EXPORTED int nvmlDeviceGetProcessesUtilizationInfo(void *, NewProcessSamples *request)
{
    return answerList(&request->count, request->samples, 40);
}
