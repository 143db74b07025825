#include "figures/Figures.h"

#include "records/MachineParts.h"
#include "records/MachineTotals.h"

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr double unixTimeOf2001 = 978307200; ///< 2001-01-01 00:00 UTC.

std::optional<double> hertz(std::optional<double> megahertz)
{
    return megahertz && *megahertz > 0 ? std::optional(*megahertz * 1e6) : std::nullopt;
}

/// A chip of Apple, all of whose parts are known unless it denies them.
void setWholeChip(Figures &figures, const ChipReading &chip)
{
    figures.cpu.busyRatio = unlessDenied(chip.cpuActiveFraction, chip.denied.cpuLoad);
    figures.cpu.watts = unlessDenied(chip.cpuWatts, chip.denied.cpuWatts);
    figures.gpus.push_back({.name = figures.chip,
                            .isIntegrated = true,
                            .busyRatio = unlessDenied(chip.gpuActiveFraction, chip.denied.gpuLoad),
                            .state = chip.gpuDominantState,
                            .watts = unlessDenied(chip.gpuWatts, chip.denied.gpuWatts),
                            .celsius = chip.gpuTempC});
    figures.npu = NPUFigures{.watts = unlessDenied(chip.aneWatts, chip.denied.aneWatts),
                             .celsius = chip.aneTempC};
}

GPUFigures gpuFigures(const GPUCoverage &coverage, const std::optional<ChipReading> &chip)
{
    GPUFigures figures{.device = coverage.device,
                       .name = coverage.name,
                       .isIntegrated = coverage.integrated,
                       .isAsleep =
                           coverage.load == Coverage::asleep || coverage.memory == Coverage::asleep,
                       .memoryTotal = coverage.memoryTotal};
    const GPUMetrics *gpu = metricsOf(coverage, chip);
    if (!gpu)
        return figures;
    figures.busyRatio = gpu->activeFraction;
    figures.state = gpu->state;
    figures.hertz = hertz(gpu->megahertz);
    figures.watts = gpu->watts;
    figures.celsius = gpu->tempC;
    figures.memoryUsed = gpu->memoryUsed;
    figures.memoryIsLowerBound = gpu->memoryIsLowerBound;
    figures.limit = gpu->limit;
    return figures;
}

void setCoveredParts(Figures &figures, const SystemMetrics &sample)
{
    const ChipReading &chip = *sample.chip;
    const MachineCoverage &coverage = coverageOf(sample);
    figures.cpu.busyRatio = unlessDenied(chip.cpuActiveFraction, chip.cpuCoreUtilizations.empty());
    figures.cpu.watts = cpuWatts(sample);
    for (const GPUCoverage &gpu : coverage.gpus)
        figures.gpus.push_back(gpuFigures(gpu, sample.chip));
    if (hasNPU(coverage)) {
        const NPUMetrics npu = chip.npu.value_or(NPUMetrics{});
        figures.npu = NPUFigures{.busyRatio = npu.activeFraction,
                                 .hertz = hertz(npu.megahertz),
                                 .watts = npu.watts,
                                 .celsius = chip.aneTempC,
                                 .memoryUsed = npu.memoryUsed};
    }
}

/// `sum` with another part, if that is known.
void add(std::optional<double> &sum, std::optional<double> part)
{
    if (part)
        sum = sum.value_or(0) + *part;
}

} // namespace

Figures figuresOf(const SystemMetrics &sample, const QString &chip)
{
    Figures figures{.unixTime = sample.timestamp + unixTimeOf2001, .chip = chip};
    if (sample.memory.total > 0)
        figures.memory = sample.memory;
    if (!sample.chip)
        return figures;
    const ChipReading &reading = *sample.chip;
    if (coverageOf(sample).isWhole)
        setWholeChip(figures, reading);
    else
        setCoveredParts(figures, sample);
    figures.cpu.hertz = hertz(reading.cpuActiveMHz);
    figures.cpu.coreRatios = reading.cpuCoreUtilizations;
    figures.cpu.celsius = reading.cpuTempC;
    figures.packageWatts = reading.packageWatts;
    figures.packageCelsius = reading.packageTempC;
    figures.systemWatts = reading.systemWatts;
    return figures;
}

std::optional<double> gpuWatts(const Figures &figures)
{
    std::optional<double> sum;
    for (const GPUFigures &gpu : figures.gpus)
        add(sum, gpu.watts);
    return sum;
}

std::optional<double> knownWatts(const Figures &figures)
{
    std::optional<double> sum = gpuWatts(figures);
    add(sum, figures.cpu.watts);
    if (figures.npu)
        add(sum, figures.npu->watts);
    return sum;
}

QString pressureName(MemoryPressure pressure)
{
    switch (pressure) {
    case MemoryPressure::warning:
        return u"warning"_s;
    case MemoryPressure::critical:
        return u"critical"_s;
    case MemoryPressure::normal:
        break;
    }
    return u"normal"_s;
}

} // namespace corvane
