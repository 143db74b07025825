#pragma once

#include "gpu/GPUProcessUse.h"

#include <string>
#include <vector>

namespace corvane {

/// What one process holds and uses of one GPU.
struct GPUUse {
    std::string device = {}; ///< Identifies the GPU across readings.
    GPUProcessUse use = {};

    friend bool operator==(const GPUUse &, const GPUUse &) = default;
};

/// One entry for each process and GPU, by device and number of the process. Two sources that tell
/// of the same process and GPU count the same memory: the larger number stands, as for the load.
std::vector<GPUUse> mergedUses(std::vector<GPUUse> uses);

} // namespace corvane
