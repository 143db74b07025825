#include "records/PowerSources.h"

#include "records/MachineParts.h"
#include "records/MachineTotals.h"

#include <algorithm>

namespace corvane {

namespace {

std::optional<double> knownCPUWatts(const SystemMetrics &sample)
{
    if (!sample.chip->coverage)
        return unlessDenied(sample.chip->cpuWatts, sample.chip->cpuWatts <= 0);
    return cpuWatts(sample);
}

std::optional<double> countedGPUWatts(const SystemMetrics &sample)
{
    if (!sample.chip->coverage)
        return unlessDenied(sample.chip->gpuWatts, sample.chip->gpuWatts <= 0);
    return gpuWatts(sample);
}

std::optional<double> npuWatts(const ChipReading &chip)
{
    return chip.npu ? chip.npu->watts : std::nullopt;
}

std::optional<double> restWatts(const SystemMetrics &sample, const MachineCoverage &machine)
{
    const ChipReading &chip = *sample.chip;
    if (!chip.packageWatts)
        return std::nullopt;
    const double gpu = gpusAreOnPackage(machine) ? countedGPUWatts(sample).value_or(0) : 0;
    const double ofParts = knownCPUWatts(sample).value_or(0) + gpu + npuWatts(chip).value_or(0);
    return std::max(*chip.packageWatts - ofParts, 0.0);
}

} // namespace

std::vector<PowerSource> powerSources(const MachineCoverage &machine)
{
    if (machine.isWhole)
        return {PowerSource::cpu, PowerSource::gpu, PowerSource::ane};

    const bool gpuIsKnown = gpuWattsCoverage(machine) == Coverage::known;
    const bool cpuIsKnown = machine.cpuWatts == Coverage::known;
    const bool packageIsKnown = machine.packageWatts == Coverage::known;
    const bool tellsParts = cpuIsKnown || (gpuIsKnown && gpusAreOnPackage(machine));
    std::vector<PowerSource> sources;
    if (cpuIsKnown)
        sources.push_back(PowerSource::cpu);
    if (packageIsKnown && !tellsParts)
        sources.push_back(PowerSource::package);
    if (gpuIsKnown)
        sources.push_back(PowerSource::gpu);
    if (machine.npuWatts == Coverage::known)
        sources.push_back(PowerSource::ane);
    if (packageIsKnown && tellsParts)
        sources.push_back(PowerSource::rest);
    return sources;
}

Coverage gpuWattsCoverage(const MachineCoverage &machine)
{
    const std::vector<GPUCoverage> gpus = countedGPUs(machine);
    const bool isKnown = std::ranges::any_of(
        gpus, [](const GPUCoverage &gpu) { return gpu.watts == Coverage::known; });
    if (isKnown)
        return Coverage::known;
    return gpus.empty() ? Coverage::absent : gpus.front().watts;
}

bool gpusAreOnPackage(const MachineCoverage &machine)
{
    return !machine.gpus.empty() && !hasGraphicsCard(machine) && machine.gpus.front().integrated;
}

std::optional<double> wattsOf(PowerSource source, const SystemMetrics &sample,
                              const MachineCoverage &machine)
{
    switch (source) {
    case PowerSource::cpu:
        return knownCPUWatts(sample);
    case PowerSource::gpu:
        return countedGPUWatts(sample);
    case PowerSource::ane:
        return npuWatts(*sample.chip);
    case PowerSource::rest:
        return restWatts(sample, machine);
    case PowerSource::package:
        break;
    }
    return sample.chip->packageWatts;
}

std::optional<double> wattsOfSources(const SystemMetrics &sample)
{
    if (!sample.chip)
        return std::nullopt;
    const MachineCoverage &machine = coverageOf(sample);
    std::optional<double> sum;
    for (const PowerSource source : powerSources(machine)) {
        if (const auto watts = wattsOf(source, sample, machine))
            sum = sum.value_or(0) + *watts;
    }
    return sum;
}

} // namespace corvane
