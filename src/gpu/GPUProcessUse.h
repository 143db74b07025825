#pragma once

#include <cstdint>
#include <optional>

namespace corvane {

/// What one process holds and uses of one GPU. What is not known is absent.
struct GPUProcessUse {
    std::int32_t pid = 0;
    std::optional<std::uint64_t> bytes = {}; ///< Of the GPU's memory.
    std::optional<double> busyFraction = {}; ///< Its share of the GPU's time, 0…1.

    friend bool operator==(const GPUProcessUse &, const GPUProcessUse &) = default;
};

} // namespace corvane
