#include "gpu/NvidiaFunctions_linux.h"

#include <initializer_list>

#include <dlfcn.h>

namespace corvane {

namespace {

/// Binds the first of several names that the library has.
template <typename Function>
void bind(Function *&function, void *library, std::initializer_list<const char *> names)
{
    for (const char *name : names) {
        if (!function)
            function = reinterpret_cast<Function *>(dlsym(library, name));
    }
}

} // namespace

void NvidiaFunctions::Closer::operator()(void *handle) const
{
    dlclose(handle);
}

Coverage NvidiaFunctions::load(const std::string &path)
{
    library.reset(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
    void *const from = library.get();
    if (!from)
        return Coverage::noLibrary;
    bind(initialise, from, {"nvmlInit_v2", "nvmlInit"});
    bind(shutdown, from, {"nvmlShutdown"});
    bind(deviceCount, from, {"nvmlDeviceGetCount_v2", "nvmlDeviceGetCount"});
    bind(deviceByIndex, from, {"nvmlDeviceGetHandleByIndex_v2", "nvmlDeviceGetHandleByIndex"});
    bind(pciInfo, from, {"nvmlDeviceGetPciInfo_v3"});
    pciInfoIsThird = pciInfo != nullptr;
    bind(pciInfo, from, {"nvmlDeviceGetPciInfo_v2", "nvmlDeviceGetPciInfo"});
    bind(name, from, {"nvmlDeviceGetName"});
    bind(utilization, from, {"nvmlDeviceGetUtilizationRates"});
    bind(performanceState, from, {"nvmlDeviceGetPerformanceState"});
    bind(clock, from, {"nvmlDeviceGetClockInfo"});
    bind(temperature, from, {"nvmlDeviceGetTemperature"});
    bind(versionedTemperature, from, {"nvmlDeviceGetTemperatureV"});
    bind(power, from, {"nvmlDeviceGetPowerUsage"});
    bind(powerLimit, from, {"nvmlDeviceGetEnforcedPowerLimit"});
    bind(energy, from, {"nvmlDeviceGetTotalEnergyConsumption"});
    bind(clockReasons, from,
         {"nvmlDeviceGetCurrentClocksEventReasons", "nvmlDeviceGetCurrentClocksThrottleReasons"});
    bind(memory, from, {"nvmlDeviceGetMemoryInfo"});
    bind(memory2, from, {"nvmlDeviceGetMemoryInfo_v2"});
    bind(computeProcesses, from,
         {"nvmlDeviceGetComputeRunningProcesses_v3", "nvmlDeviceGetComputeRunningProcesses_v2"});
    bind(graphicsProcesses, from,
         {"nvmlDeviceGetGraphicsRunningProcesses_v3", "nvmlDeviceGetGraphicsRunningProcesses_v2"});
    // The structures differ, and a library may give the unsuffixed name to any of its versions.
    if (!computeProcesses)
        bind(computeProcesses1, from, {"nvmlDeviceGetComputeRunningProcesses"});
    if (!graphicsProcesses)
        bind(graphicsProcesses1, from, {"nvmlDeviceGetGraphicsRunningProcesses"});
    bind(processSamples, from, {"nvmlDeviceGetProcessUtilization"});
    bind(newProcessSamples, from, {"nvmlDeviceGetProcessesUtilizationInfo"});
    const bool complete = initialise && shutdown && deviceCount && deviceByIndex;
    return complete ? Coverage::known : Coverage::noLibrary;
}

Coverage nvidiaCoverage(NvidiaResult result)
{
    switch (result) {
    case nvidia::success:
        return Coverage::known;
    case nvidia::noPermission:
        return Coverage::locked;
    case nvidia::libraryNotFound:
        return Coverage::noLibrary;
    case nvidia::versionMismatch:
        return Coverage::newDriver;
    default:
        return Coverage::unpublished;
    }
}

} // namespace corvane
