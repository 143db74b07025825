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
    // The hardware counts in 32 bits: a step back counts as no idle time.
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

bool isIdleShare(double busyShare)
{
    constexpr double leastLoad = 0.01;
    return busyShare < leastLoad;
}

bool wasIdle(const GPUReading *before, const GPUReading &now)
{
    if (!now.busyFraction && !now.idleMilliseconds)
        return true;
    return isIdleShare(gpuBusyShare(before, now).value_or(1));
}

std::optional<double> gpuWatts(const GPUReading *before, const GPUReading &now)
{
    const auto counted = countedWatts(before, now);
    return counted ? counted : now.watts;
}

} // namespace corvane
