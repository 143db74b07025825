#include "records/MachineParts.h"

#include <algorithm>
#include <functional>

namespace corvane {

namespace {

/// Whether the device tells the quantity, or will once it is awake or its driver is in order.
bool canTell(Coverage coverage)
{
    return isDenied(coverage) ? coverage != Coverage::locked && coverage != Coverage::unpublished
                              : coverage == Coverage::known;
}

} // namespace

bool hasGraphicsCard(const MachineCoverage &machine)
{
    return std::ranges::any_of(machine.gpus, isGraphicsCard);
}

bool hasMemory(const GPUCoverage &gpu)
{
    return canTell(gpu.memory) || (gpu.memoryTotal && isDenied(gpu.memory));
}

std::vector<GPUCoverage> countedGPUs(const MachineCoverage &machine)
{
    std::vector<GPUCoverage> gpus = machine.gpus;
    if (hasGraphicsCard(machine))
        std::erase_if(gpus, std::not_fn(isGraphicsCard));
    return gpus;
}

std::vector<GPUCoverage> gpusWithMemory(const MachineCoverage &machine)
{
    std::vector<GPUCoverage> gpus = countedGPUs(machine);
    std::erase_if(gpus, std::not_fn(hasMemory));
    return gpus;
}

bool hasVRAM(const MachineCoverage &machine)
{
    return std::ranges::any_of(
        machine.gpus, [](const GPUCoverage &gpu) { return isGraphicsCard(gpu) && hasMemory(gpu); });
}

bool hasWatts(const MachineCoverage &machine)
{
    return canTell(machine.cpuWatts) || canTell(machine.packageWatts) || canTell(machine.npuWatts)
        || std::ranges::any_of(machine.gpus, canTell, &GPUCoverage::watts);
}

bool hasNPU(const MachineCoverage &machine)
{
    return machine.npuLoad != Coverage::absent;
}

bool tellsCPUAndMemoryAlone(const MachineCoverage &machine)
{
    return machine.gpus.empty() && !hasWatts(machine) && machine.cpuTemperature != Coverage::known;
}

} // namespace corvane
