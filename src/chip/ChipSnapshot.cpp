#include "chip/ChipSnapshot.h"

#include "chip/GPUStateTimes.h"

#include <algorithm>

namespace corvane {

namespace {

/// Null when the GPU could not be read then.
const GPUReading *earlier(const ChipSnapshot &from, const GPUReading &now)
{
    const auto same = std::ranges::find(from.gpus, now.device, &GPUReading::device);
    return same == from.gpus.end() ? nullptr : &*same;
}

/// Idle times stand still while the machine sleeps, and a GPU would look busy for all of that time:
/// after a long gap they give no load.
std::optional<double> busyShare(const ChipSnapshot &from, const GPUReading &gpu)
{
    constexpr double longestGap = 3; // Seconds; there is a snapshot a second.
    const GPUReading *before = earlier(from, gpu);
    const bool live = before && gpu.seconds - before->seconds <= longestGap;
    return gpuBusyShare(live ? before : nullptr, gpu);
}

std::optional<double> mean(const std::vector<double> &values)
{
    double sum = 0;
    for (const double value : values)
        sum += value;
    return values.empty() ? std::nullopt : std::optional(sum / double(values.size()));
}

GPUMetrics gpuMetrics(const ChipSnapshot &from, const GPUReading &gpu)
{
    GPUMetrics metrics = {.device = gpu.device,
                          .integrated = gpu.integrated,
                          .activeFraction = busyShare(from, gpu),
                          .megahertz = gpu.megahertz,
                          .tempC = mean(gpu.temperatures),
                          .memoryUsed = gpu.memoryUsed,
                          .memoryIsLowerBound = gpu.memoryIsLowerBound,
                          .memoryOwnUsed = gpu.memoryOwnUsed,
                          .limit = gpu.limit};
    if (!gpu.state.empty())
        metrics.state = QString::fromStdString(gpu.state);
    if (!gpu.integrated || gpu.coreWatts)
        metrics.watts = gpuWatts(earlier(from, gpu), gpu);
    return metrics;
}

struct ChipWatts {
    std::optional<double> cpu = {};
    std::optional<double> graphics = {}; ///< Of an integrated GPU.
    std::optional<double> package = {};  ///< Where the CPU's watts are known beside it.
};

int countOf(const std::vector<PackageEnergyReading> &counters, EnergyPart part)
{
    return int(std::ranges::count(counters, part, &PackageEnergyReading::part));
}

/// Watts of all counters of one part; absent without any, and while one of them restarts.
std::optional<double> countedWatts(const ChipSnapshot &from, const ChipSnapshot &to,
                                   EnergyPart part)
{
    constexpr double leastSeconds = 0.05; // Two snapshots may follow each other at once.
    const double seconds = std::max(to.seconds - from.seconds, 0.0);
    std::optional<double> sum;
    for (const PackageEnergyReading &now : to.packages) {
        if (now.part != part)
            continue;
        const auto before = std::ranges::find(from.packages, now.zone, &PackageEnergyReading::zone);
        const auto joules =
            before == from.packages.end() ? std::nullopt : packageJoules(*before, now, seconds);
        if (!joules)
            return std::nullopt;
        sum = sum.value_or(0) + *joules;
    }
    return sum ? std::optional(*sum / std::max(seconds, leastSeconds)) : std::nullopt;
}

/// Sum of a value over all APUs; absent without any, and unless each of them tells it.
std::optional<double> apuWatts(const ChipSnapshot &snapshot,
                               std::optional<double> GPUReading::*value)
{
    std::optional<double> sum;
    for (const GPUReading &gpu : snapshot.gpus) {
        if (!gpu.packageWatts)
            continue;
        if (!(gpu.*value))
            return std::nullopt;
        sum = sum.value_or(0) + *(gpu.*value);
    }
    return sum;
}

/// A package whose parts are not told counts as the CPU.
ChipWatts chipWatts(const ChipSnapshot &from, const ChipSnapshot &to)
{
    const auto counted = countedWatts(from, to, EnergyPart::package);
    const auto package = counted ? counted : apuWatts(to, &GPUReading::packageWatts);
    if (const auto cores = apuWatts(to, &GPUReading::coreWatts))
        return {.cpu = cores, .package = package};
    const auto cores = countedWatts(from, to, EnergyPart::cores);
    const auto graphics = countedWatts(from, to, EnergyPart::graphics);
    const int packages = countOf(to.packages, EnergyPart::package);
    const bool areWhole = countOf(to.packages, EnergyPart::cores) == packages
        && countOf(to.packages, EnergyPart::graphics) == packages;
    if (counted && cores && graphics && areWhole)
        return {.cpu = cores, .graphics = graphics, .package = package};
    return {.cpu = package};
}

/// Watts of an integrated GPU that its package counts.
void setGraphicsWatts(std::vector<GPUMetrics> &gpus, double watts)
{
    const auto lacksWatts = [](const GPUMetrics &gpu) { return gpu.integrated && !gpu.watts; };
    if (std::ranges::count_if(gpus, lacksWatts) == 1)
        std::ranges::find_if(gpus, lacksWatts)->watts = watts;
}

/// Sums up the GPUs of one kind; false when none of them has a load.
bool setLoad(ChipReading &reading, bool integrated)
{
    GPUStateTimes states;
    double sum = 0;
    int count = 0;
    for (const GPUMetrics &gpu : reading.gpus) {
        if (gpu.integrated != integrated || !gpu.activeFraction)
            continue;
        states.add(gpu.state.value_or(QString()).toStdString(), *gpu.activeFraction);
        sum += *gpu.activeFraction;
        ++count;
    }
    reading.gpuDominantState = QString::fromStdString(states.dominant());
    reading.gpuStateResidency = states.shares();
    reading.gpuActiveFraction = count > 0 ? sum / count : 0;
    return count > 0;
}

void setGPUs(ChipReading &reading, const ChipSnapshot &from, const ChipSnapshot &to,
             std::optional<double> graphicsWatts)
{
    for (const GPUReading &gpu : to.gpus)
        reading.gpus.push_back(gpuMetrics(from, gpu));
    if (graphicsWatts)
        setGraphicsWatts(reading.gpus, *graphicsWatts);
    for (const GPUMetrics &gpu : reading.gpus)
        reading.gpuWatts += gpu.watts.value_or(0);
    // While a discrete GPU has a load, integrated ones do not count: they are idle then, and would
    // halve it.
    if (!setLoad(reading, false))
        setLoad(reading, true);
}

ChipTemperatures temperatures(const ChipSnapshot &snapshot)
{
    TemperatureMeans means;
    for (const PartTemperature &sensor : snapshot.temperatures)
        means.add(sensor);
    for (const GPUReading &gpu : snapshot.gpus) {
        for (const double celsius : gpu.temperatures)
            means.add({ChipPart::gpu, celsius});
    }
    return means.means();
}

} // namespace

ChipReading chipReading(const ChipSnapshot &from, const ChipSnapshot &to,
                        const std::vector<CPUCluster> &clusters)
{
    const CPULoad cpu = cpuLoad(from.cpu, to.cpu, clusters);
    const ChipWatts watts = chipWatts(from, to);
    ChipReading reading = {.cpuWatts = watts.cpu.value_or(0),
                           .cpuActiveFraction = cpu.activeFraction.value_or(0),
                           .cpuActiveMHz = cpu.activeMHz,
                           .packageWatts = watts.package};
    reading.denied.cpuLoad = !cpu.activeFraction;
    reading.denied.cpuWatts = !watts.cpu;
    setGPUs(reading, from, to, watts.graphics);
    setTemperatures(reading, temperatures(to));
    return reading;
}

} // namespace corvane
