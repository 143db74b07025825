#pragma once

#include "records/SystemMetrics.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace corvane {

/// Who holds the memory of one GPU, as the newest survey of processes found it. What is in use
/// beyond that belongs to processes that cannot be identified, and to the driver.
struct GPUHolders {
    QString device = {};       ///< As in `GPUMetrics`.
    std::uint64_t aiBytes = 0; ///< Of the AI workloads with all their processes.
    QString largestName = {};  ///< The process that holds most; empty: none is known.
    std::uint64_t largestBytes = 0;
    std::uint64_t knownBytes = 0; ///< Of all processes that are known to hold some.

    friend bool operator==(const GPUHolders &, const GPUHolders &) = default;
};

/// Memory in use on the GPUs that none of the known processes holds: that of processes that were
/// not looked at, and the driver's. Absent where no GPU tells all that is in use of it. Pure.
std::optional<std::uint64_t> unattributedMemory(const SystemMetrics &sample,
                                                const std::vector<GPUHolders> &holders);

} // namespace corvane
