#include "records/GPUTotals.h"

#include "records/MachineParts.h"

#include <algorithm>

namespace corvane {

namespace {

void addTo(std::optional<double> &sum, const std::optional<double> &value)
{
    if (value)
        sum = sum.value_or(0) + *value;
}

void addMemory(GPUTotals &totals, const GPUCoverage &gpu, const GPUMetrics &metrics)
{
    if (!metrics.memoryUsed || gpu.memoryTotal.value_or(0) == 0)
        return;
    totals.memoryUsed = totals.memoryUsed.value_or(0) + *metrics.memoryUsed;
    totals.memoryTotal = totals.memoryTotal.value_or(0) + *gpu.memoryTotal;
    totals.memoryIsLowerBound |= metrics.memoryIsLowerBound;
}

/// Mean load of the GPUs that told one, and clock and state if it was only one.
void setLoad(GPUTotals &totals, const std::vector<const GPUMetrics *> &gpus)
{
    std::optional<double> sum;
    int count = 0;
    for (const GPUMetrics *gpu : gpus) {
        if (!gpu->activeFraction)
            continue;
        addTo(sum, gpu->activeFraction);
        ++count;
        totals.megahertz = count == 1 ? gpu->megahertz : std::nullopt;
        totals.state = count == 1 ? gpu->state : std::nullopt;
    }
    if (sum)
        totals.activeFraction = *sum / count;
}

} // namespace

const GPUMetrics *metricsOf(const GPUCoverage &gpu, const std::optional<ChipReading> &chip)
{
    if (!chip)
        return nullptr;
    const auto found = std::ranges::find(chip->gpus, gpu.device, &GPUMetrics::device);
    return found == chip->gpus.end() ? nullptr : &*found;
}

GPUTotals gpuTotals(const std::optional<ChipReading> &chip, const MachineCoverage &machine)
{
    GPUTotals totals;
    std::vector<const GPUMetrics *> counted;
    const std::vector<GPUCoverage> gpus = countedGPUs(machine);
    totals.isAsleep = !gpus.empty() && std::ranges::all_of(gpus, [](const GPUCoverage &gpu) {
        return gpu.load == Coverage::asleep;
    });
    for (const GPUCoverage &gpu : gpus) {
        const GPUMetrics *metrics = metricsOf(gpu, chip);
        if (!metrics)
            continue;
        counted.push_back(metrics);
        addTo(totals.watts, metrics->watts);
        if (metrics->tempC)
            totals.tempC = std::max(totals.tempC.value_or(0), *metrics->tempC);
        addMemory(totals, gpu, *metrics);
    }
    setLoad(totals, counted);
    if (totals.activeFraction || !chip)
        return totals;

    std::vector<const GPUMetrics *> integrated;
    for (const GPUMetrics &metrics : chip->gpus) {
        if (metrics.integrated)
            integrated.push_back(&metrics);
    }
    setLoad(totals, integrated);
    totals.integratedStandsIn = totals.activeFraction && !gpus.empty() && !gpus.front().integrated;
    return totals;
}

} // namespace corvane
