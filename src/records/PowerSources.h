#pragma once

#include "records/SystemMetrics.h"

#include <optional>
#include <vector>

namespace corvane {

/// What draws power and is charted by itself.
enum class PowerSource {
    cpu,
    gpu,
    ane,
    rest,   ///< What the known parts leave of the package.
    package ///< The package where no watts of its parts are known.
};

/// The sources of a machine whose watts are known, in the order in which they are stacked. Of a
/// whole chip CPU, GPU and Neural Engine.
std::vector<PowerSource> powerSources(const MachineCoverage &machine);

/// The watts of the counted GPUs: known if one of them tells them, else why the first does not.
Coverage gpuWattsCoverage(const MachineCoverage &machine);

/// Whether the counted GPUs are part of the package.
bool gpusAreOnPackage(const MachineCoverage &machine);

/// The watts of a source in a sample with a reading, on a machine that is no whole chip; absent
/// where nothing was known. `machine` is the newest coverage. A sample from the history file does
/// not tell an absent value from a true 0: there 0 is absent.
std::optional<double> wattsOf(PowerSource source, const SystemMetrics &sample,
                              const MachineCoverage &machine);

/// The watts of all sources together, by what the machine told in that sample; absent where none
/// was known.
std::optional<double> wattsOfSources(const SystemMetrics &sample);

} // namespace corvane
