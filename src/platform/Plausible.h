#pragma once

#include <cstdint>

namespace corvane {

// What a machine can have. A value beyond these bounds is garbage and counts as unreadable.

/// The largest number of CPUs that a kernel can be configured for (NR_CPUS of x86 and powerpc).
inline constexpr std::uint64_t maxCPUs = 8192;

/// Bytes of memory or swap: 1 PiB; the largest machines have some tens of TiB.
inline constexpr std::uint64_t largestByteCount = std::uint64_t(1) << 50;

/// Clock of a CPU or GPU: about twice the overclocking record.
inline constexpr double highestMHz = 20'000;

/// Power of one CPU package or GPU in watts: several times the largest accelerator.
inline constexpr double maxWatts = 5'000;

/// Limits for `isTemperature`. Linux shows a sensor's register as it stands, and every chip
/// switches itself off below 130 °C. A Mac shows calibrated values, of which only far outliers are
/// wrong.
inline constexpr double celsiusLimitLinux = 150;
inline constexpr double celsiusLimitMac = 200;

/// Whether a chip can have this temperature: above 0, where a sensor is off, and below the limit of
/// its system. False for a value that is not finite.
constexpr bool isTemperature(double celsius, double limit)
{
    return celsius > 0 && celsius < limit;
}

} // namespace corvane
