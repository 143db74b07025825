#pragma once

#include "records/PowerSources.h"
#include "records/SystemMetrics.h"

#include <array>
#include <cstddef>
#include <optional>

namespace corvane {

/// The quantities of which means are kept. The order is that of the file.
enum class Measure : std::uint8_t {
    memory, ///< Used share, per cent; so are all loads.
    cpuLoad,
    gpuLoad, ///< Of the counted GPUs together.
    npuLoad, ///< Absent on a whole chip, where it follows from the watts.
    gpuMemory,
    cpuWatts,
    gpuWatts,
    npuWatts,
    restWatts,  ///< What the known parts leave of the package; the package if none is known.
    totalWatts, ///< Sum of the watts above, as far as they are known.
    firstGPU,   ///< Load of the first of several counted GPUs; the next three follow.
    secondGPU,
    thirdGPU,
    fourthGPU
};

inline constexpr std::size_t measureCount = 14;

/// Several GPUs have a chart each as far as this many.
inline constexpr std::size_t mostMeasuredGPUs = 4;

constexpr std::size_t indexOf(Measure measure)
{
    return static_cast<std::size_t>(measure);
}

/// The watts of that source.
Measure measureOf(PowerSource source);

/// One value of each measure; absent where nothing was known.
using Measures = std::array<std::optional<double>, measureCount>;

/// The measures of a sample. `machine` is the newest coverage: a sample from the history file has
/// none of its own. A denied value is absent, and so is one that is not finite.
Measures measuresOf(const SystemMetrics &sample, const MachineCoverage &machine);

} // namespace corvane
