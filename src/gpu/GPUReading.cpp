#include "gpu/GPUReading.h"

#include <algorithm>

namespace corvane {

namespace {

/// Idle share between two readings of a residency counter.
std::optional<double> idleShare(const GPUReading *before, const GPUReading &now)
{
    if (!before || !before->idleMilliseconds || !now.idleMilliseconds)
        return std::nullopt;
    const double elapsed = (now.seconds - before->seconds) * 1000;
    if (elapsed <= 0)
        return std::nullopt;
    // 32 bits of hardware lie beneath the counter: a step back counts as none.
    if (*now.idleMilliseconds < *before->idleMilliseconds)
        return 0;
    const auto idle = double(*now.idleMilliseconds - *before->idleMilliseconds);
    return std::min(idle / elapsed, 1.0);
}

std::optional<double> countedWatts(const GPUReading *before, const GPUReading &now)
{
    if (!before || !before->microjoules || !now.microjoules)
        return std::nullopt;
    const double elapsed = now.seconds - before->seconds;
    if (elapsed <= 0 || *now.microjoules < *before->microjoules)
        return std::nullopt;
    return double(*now.microjoules - *before->microjoules) * 1e-6 / elapsed;
}

} // namespace

std::optional<double> gpuBusyShare(const GPUReading *before, const GPUReading &now)
{
    if (now.busyFraction)
        return now.busyFraction;
    if (const auto idle = idleShare(before, now))
        return 1 - *idle;
    return std::nullopt;
}

std::optional<double> gpuJoules(const GPUReading *before, const GPUReading &now, double seconds)
{
    const auto watts = countedWatts(before, now);
    if (!watts && !now.watts)
        return std::nullopt;
    return watts.value_or(now.watts.value_or(0)) * seconds;
}

} // namespace corvane
