#include "records/MachineTotals.h"

#include "records/MachineParts.h"
#include "records/PowerSources.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane {

namespace {

/// Coverage and present values of one GPU.
struct GPU {
    const GPUCoverage *coverage;
    const GPUMetrics *metrics; ///< Null where it could not be read.
};

/// The GPUs of that kind, in the order of their addresses.
std::vector<GPU> gpusOf(const SystemMetrics &sample, bool cards)
{
    std::vector<GPU> gpus;
    for (const GPUCoverage &coverage : coverageOf(sample).gpus) {
        if (isGraphicsCard(coverage) != cards)
            continue;
        gpus.push_back({&coverage, metricsOf(coverage, sample.chip)});
    }
    return gpus;
}

/// A value that a source delivers; absent where it has none, or an impossible one.
std::optional<double> present(Coverage coverage, const std::optional<double> &value)
{
    const bool isUsable = coverage == Coverage::known && value && std::isfinite(*value);
    return isUsable ? value : std::nullopt;
}

std::optional<double> load(const GPU &gpu)
{
    return gpu.metrics ? present(gpu.coverage->load, gpu.metrics->activeFraction) : std::nullopt;
}

std::optional<double> wattsOfGPU(const GPU &gpu)
{
    return gpu.metrics ? present(gpu.coverage->watts, gpu.metrics->watts) : std::nullopt;
}

std::optional<std::uint64_t> memoryUsed(const GPU &gpu)
{
    const bool isKnown = gpu.metrics && gpu.coverage->memory == Coverage::known;
    return isKnown ? gpu.metrics->memoryUsed : std::nullopt;
}

std::optional<double> temperature(const GPU &gpu)
{
    return gpu.metrics ? present(Coverage::known, gpu.metrics->tempC) : std::nullopt;
}

/// The graphics cards, or all GPUs of a machine without any.
std::vector<GPU> countedGPUsOf(const SystemMetrics &sample)
{
    return gpusOf(sample, hasGraphicsCard(coverageOf(sample)));
}

bool hasLoad(const GPU &gpu)
{
    return load(gpu).has_value();
}

/// All asleep, or the reason of the first that is awake.
void setDenial(FigureState &state, Coverage &reason, const std::vector<GPU> &gpus,
               Coverage GPUCoverage::*quantity)
{
    const auto awake = std::ranges::find_if(
        gpus, [&](const GPU &gpu) { return gpu.coverage->*quantity != Coverage::asleep; });
    state = awake == gpus.end() ? FigureState::asleep : FigureState::unreadable;
    reason = awake == gpus.end() ? Coverage::asleep : awake->coverage->*quantity;
}

/// Adds without wrapping: counts come from drivers.
void add(std::uint64_t &sum, std::uint64_t count)
{
    sum += std::min(count, std::numeric_limits<std::uint64_t>::max() - sum);
}

GPULoadShare loadShare(const GPU &gpu)
{
    if (const auto fraction = load(gpu))
        return {FigureState::known, *fraction};
    return {gpu.coverage->load == Coverage::asleep ? FigureState::asleep : FigureState::unreadable};
}

PowerParts partsWithoutCPU(int gpus, bool npu)
{
    if (gpus == 0)
        return PowerParts::npuOnly;
    if (npu)
        return gpus == 1 ? PowerParts::gpuAndNPU : PowerParts::gpusAndNPU;
    return gpus == 1 ? PowerParts::gpuOnly : PowerParts::gpusOnly;
}

PowerParts partsWithCPU(int told, int untold)
{
    if (untold == 0)
        return PowerParts::all;
    return told == 0 ? PowerParts::cpuOnly : PowerParts::notAllGPUs;
}

/// Of the whole, or of the CPU in it.
bool tellsPackageWatts(const SystemMetrics &sample)
{
    const Coverage coverage = coverageOf(sample).packageWatts;
    return present(coverage, sample.chip->packageWatts) || cpuWatts(sample);
}

} // namespace

const GPUMetrics *metricsOf(const GPUCoverage &gpu, const std::optional<ChipReading> &chip)
{
    if (!chip)
        return nullptr;
    const auto found = std::ranges::find(chip->gpus, gpu.device, &GPUMetrics::device);
    return found == chip->gpus.end() ? nullptr : &*found;
}

GPUMemoryTotal gpuMemoryTotal(const SystemMetrics &sample)
{
    std::vector<GPU> gpus = countedGPUsOf(sample);
    GPUMemoryTotal memory{.ofCards = !gpus.empty() && isGraphicsCard(*gpus.front().coverage)};
    std::erase_if(gpus, [](const GPU &gpu) { return !hasMemory(*gpu.coverage); });
    if (gpus.empty())
        return memory;

    bool allTotalsAreKnown = true;
    std::uint64_t totalOfAll = 0;
    for (const GPU &gpu : gpus) {
        add(totalOfAll, gpu.coverage->memoryTotal.value_or(0));
        memory.sleeping += gpu.coverage->memory == Coverage::asleep ? 1 : 0;
        const auto used = memoryUsed(gpu);
        if (!used)
            continue;
        memory.state = FigureState::known;
        add(memory.used, *used);
        add(memory.total, gpu.coverage->memoryTotal.value_or(0));
        allTotalsAreKnown = allTotalsAreKnown && gpu.coverage->memoryTotal.value_or(0) > 0;
        memory.isLowerBound = memory.isLowerBound || gpu.metrics->memoryIsLowerBound;
    }
    if (memory.state == FigureState::known) {
        if (!allTotalsAreKnown)
            memory.total = 0;
        return memory;
    }
    memory.total = totalOfAll;
    setDenial(memory.state, memory.reason, gpus, &GPUCoverage::memory);
    return memory;
}

std::optional<double> usedPercent(const GPUMemoryTotal &memory)
{
    if (memory.state != FigureState::known || memory.total == 0)
        return std::nullopt;
    return static_cast<double>(std::min(memory.used, memory.total))
        / static_cast<double>(memory.total) * 100;
}

GPULoadTotal gpuLoadTotal(const SystemMetrics &sample)
{
    std::vector<GPU> gpus = gpusOf(sample, true);
    std::vector<GPU> integrated = gpusOf(sample, false);
    const bool standsIn =
        !std::ranges::any_of(gpus, hasLoad) && std::ranges::any_of(integrated, hasLoad);
    GPULoadTotal total{.isStandIn = standsIn && !gpus.empty()};
    if (standsIn || gpus.empty())
        gpus = std::move(integrated);
    if (gpus.empty())
        return total;

    int known = 0;
    for (const GPU &gpu : gpus) {
        total.shares.push_back(loadShare(gpu));
        if (total.shares.back().state != FigureState::known)
            continue;
        total.fraction += total.shares.back().fraction;
        ++known;
    }
    if (gpus.size() == 1 && gpus.front().metrics) {
        total.watts = wattsOfGPU(gpus.front());
        total.megahertz = gpus.front().metrics->megahertz;
        total.performanceState = gpus.front().metrics->state;
    }
    if (known > 0) {
        total.state = FigureState::known;
        total.fraction /= known;
    } else {
        setDenial(total.state, total.reason, gpus, &GPUCoverage::load);
    }
    return total;
}

std::optional<double> cpuWatts(const SystemMetrics &sample)
{
    if (!sample.chip)
        return std::nullopt;
    const ChipReading &chip = *sample.chip;
    return present(coverageOf(sample).cpuWatts, unlessDenied(chip.cpuWatts, chip.denied.cpuWatts));
}

std::optional<double> gpuWatts(const SystemMetrics &sample)
{
    std::optional<double> sum;
    for (const GPU &gpu : countedGPUsOf(sample)) {
        if (const auto ofGPU = wattsOfGPU(gpu))
            sum = sum.value_or(0) + *ofGPU;
    }
    return sum;
}

std::optional<double> gpuTemperature(const SystemMetrics &sample)
{
    std::optional<double> highest;
    for (const GPU &gpu : countedGPUsOf(sample))
        highest = std::max(highest, temperature(gpu)); // An absent one is lower than any.
    return highest;
}

PowerTotal powerTotal(const SystemMetrics &sample)
{
    if (!hasWatts(coverageOf(sample)))
        return {};
    PowerTotal total{.state = FigureState::unreadable};
    const auto watts = wattsOfSources(sample);
    if (!watts)
        return total;
    const bool package = tellsPackageWatts(sample);
    int told = 0;
    int untold = 0;
    const auto countGPUs = [&](bool cards) {
        for (const GPU &gpu : gpusOf(sample, cards))
            ++(wattsOfGPU(gpu) ? told : untold);
    };
    countGPUs(true);
    if (!package)
        countGPUs(false); // Else they are part of the package.
    const bool npu = sample.chip->npu && sample.chip->npu->watts
        && coverageOf(sample).npuWatts == Coverage::known;
    if (!package && told == 0 && !npu)
        return total;
    total.state = FigureState::known;
    total.watts = *watts;
    total.parts = package ? partsWithCPU(told, untold) : partsWithoutCPU(told, npu);
    return total;
}

} // namespace corvane
