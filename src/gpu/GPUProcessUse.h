#pragma once

#include <cstdint>
#include <optional>

namespace corvane {

/// What one process holds and uses of one GPU. What is not known is absent.
struct GPUProcessUse {
    std::int32_t pid = 0;
    std::optional<std::uint64_t> bytes = {}; ///< Of the GPU's memory.
    std::optional<double> busyFraction = {}; ///< Its share of the GPU's time, 0…1.
    bool isUnused = false;  ///< The driver tells who uses the GPU, and lately this process did not.
    bool hidesLoad = false; ///< It may use the GPU by ways whose load the driver does not tell.

    friend bool operator==(const GPUProcessUse &, const GPUProcessUse &) = default;
};

} // namespace corvane
