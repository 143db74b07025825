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
std::optional<double> busyShare(const ChipSnapshot &from, const ChipSnapshot &to,
                                const GPUReading &gpu)
{
    constexpr double longestGap = 3; // Seconds; there is a snapshot a second.
    const bool live = to.seconds - from.seconds <= longestGap;
    return gpuBusyShare(live ? earlier(from, gpu) : nullptr, gpu);
}

std::optional<double> mean(const std::vector<double> &values)
{
    double sum = 0;
    for (const double value : values)
        sum += value;
    return values.empty() ? std::nullopt : std::optional(sum / double(values.size()));
}

GPUMetrics gpuMetrics(const ChipSnapshot &from, const ChipSnapshot &to, const GPUReading &gpu)
{
    GPUMetrics metrics = {.device = QString::fromStdString(gpu.device),
                          .integrated = gpu.integrated,
                          .activeFraction = busyShare(from, to, gpu),
                          .megahertz = gpu.megahertz,
                          .tempC = mean(gpu.temperatures),
                          .memoryUsed = gpu.memoryUsed,
                          .memoryIsLowerBound = gpu.memoryIsLowerBound,
                          .memoryOwnUsed = gpu.memoryOwnUsed,
                          .limit = gpu.limit};
    if (!gpu.state.empty())
        metrics.state = QString::fromStdString(gpu.state);
    if (!gpu.integrated)
        metrics.watts = gpuWatts(earlier(from, gpu), gpu);
    return metrics;
}

/// Watts of all packages that count their energy, else of an APU's socket.
double cpuWatts(const ChipSnapshot &from, const ChipSnapshot &to)
{
    constexpr double leastSeconds = 0.05; // Two snapshots may follow each other at once.
    const double seconds = std::max(to.seconds - from.seconds, 0.0);
    bool counted = false;
    double joules = 0;
    for (const PackageEnergyReading &now : to.packages) {
        const auto before = std::ranges::find(from.packages, now.zone, &PackageEnergyReading::zone);
        if (before == from.packages.end())
            continue;
        counted = true;
        joules += packageJoules(*before, now, seconds).value_or(0);
    }
    if (counted)
        return joules / std::max(seconds, leastSeconds);

    double watts = 0;
    for (const GPUReading &gpu : to.gpus)
        watts += gpu.packageWatts.value_or(0);
    return watts;
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

void setGPUs(ChipReading &reading, const ChipSnapshot &from, const ChipSnapshot &to)
{
    for (const GPUReading &gpu : to.gpus) {
        reading.gpus.push_back(gpuMetrics(from, to, gpu));
        reading.gpuWatts += reading.gpus.back().watts.value_or(0);
    }
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
    ChipReading reading = {.cpuWatts = cpuWatts(from, to),
                           .cpuActiveFraction = cpu.activeFraction,
                           .cpuActiveMHz = cpu.activeMHz};
    setGPUs(reading, from, to);
    setTemperatures(reading, temperatures(to));
    return reading;
}

} // namespace corvane
