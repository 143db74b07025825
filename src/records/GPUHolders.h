#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace corvane {

/// Who holds the memory of one GPU, as the newest survey of processes found it. What is in use
/// beyond that belongs to processes that cannot be identified, and to the driver.
struct GPUHolders {
    QString device = {};       ///< As in `GPUMetrics`.
    std::uint64_t aiBytes = 0; ///< Of the AI workloads with all their processes.
    QString largestName = {};  ///< The process that holds most; empty: none is known.
    std::uint64_t largestBytes = 0;

    friend bool operator==(const GPUHolders &, const GPUHolders &) = default;
};

} // namespace corvane
