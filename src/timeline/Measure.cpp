#include "timeline/Measure.h"

#include "records/MachineParts.h"
#include "records/MachineTotals.h"

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

std::optional<double> percent(const std::optional<double> &fraction)
{
    return fraction ? std::optional(*fraction * 100) : std::nullopt;
}

void setOfWholeChip(Measures &measures, const ChipReading &chip)
{
    const DeniedParts &denied = chip.denied;
    measures[indexOf(Measure::cpuLoad)] =
        unlessDenied(chip.cpuActiveFraction * 100, denied.cpuLoad);
    measures[indexOf(Measure::gpuLoad)] =
        unlessDenied(chip.gpuActiveFraction * 100, denied.gpuLoad);
    measures[indexOf(Measure::cpuWatts)] = unlessDenied(chip.cpuWatts, denied.cpuWatts);
    measures[indexOf(Measure::gpuWatts)] = unlessDenied(chip.gpuWatts, denied.gpuWatts);
    measures[indexOf(Measure::npuWatts)] = unlessDenied(chip.aneWatts, denied.aneWatts);
}

void setGPUs(Measures &measures, const SystemMetrics &sample, const MachineCoverage &machine)
{
    const GPULoadTotal load = gpuLoadTotal(sample);
    if (load.state == FigureState::known)
        measures[indexOf(Measure::gpuLoad)] = load.fraction * 100;
    measures[indexOf(Measure::gpuMemory)] = usedPercent(gpuMemoryTotal(sample));

    const std::vector<GPUCoverage> gpus = countedGPUs(machine);
    for (std::size_t i = 0; gpus.size() > 1 && i < std::min(gpus.size(), mostMeasuredGPUs); ++i) {
        const GPUMetrics *metrics = metricsOf(gpus[i], sample.chip);
        measures[indexOf(Measure::firstGPU) + i] =
            metrics ? percent(metrics->activeFraction) : std::nullopt;
    }
}

void setOfMachine(Measures &measures, const SystemMetrics &sample, const MachineCoverage &machine)
{
    const ChipReading &chip = *sample.chip;
    measures[indexOf(Measure::cpuLoad)] =
        unlessDenied(chip.cpuActiveFraction * 100, chip.denied.cpuLoad);
    measures[indexOf(Measure::npuLoad)] =
        chip.npu ? percent(chip.npu->activeFraction) : std::nullopt;
    if (!machine.gpus.empty())
        setGPUs(measures, sample, machine);
    for (const PowerSource source : powerSources(machine))
        measures[indexOf(measureOf(source))] = wattsOf(source, sample, machine);
}

std::optional<double> sumOfWatts(const Measures &measures)
{
    std::optional<double> sum;
    for (std::size_t i = indexOf(Measure::cpuWatts); i <= indexOf(Measure::restWatts); ++i) {
        if (measures[i])
            sum = sum.value_or(0) + *measures[i];
    }
    return sum;
}

} // namespace

Measure measureOf(PowerSource source)
{
    switch (source) {
    case PowerSource::cpu:
        return Measure::cpuWatts;
    case PowerSource::gpu:
        return Measure::gpuWatts;
    case PowerSource::ane:
        return Measure::npuWatts;
    case PowerSource::rest:
    case PowerSource::package:
        break;
    }
    return Measure::restWatts;
}

Measures measuresOf(const SystemMetrics &sample, const MachineCoverage &machine)
{
    Measures measures;
    if (sample.memory.total > 0)
        measures[indexOf(Measure::memory)] = usedPercent(sample.memory);
    if (sample.chip && machine.isWhole)
        setOfWholeChip(measures, *sample.chip);
    else if (sample.chip)
        setOfMachine(measures, sample, machine);
    for (std::optional<double> &value : measures) {
        if (value && !std::isfinite(*value))
            value.reset();
    }
    measures[indexOf(Measure::totalWatts)] = sumOfWatts(measures);
    return measures;
}

} // namespace corvane
