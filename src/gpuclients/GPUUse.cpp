#include "gpuclients/GPUUse.h"

#include <algorithm>
#include <tuple>

namespace corvane {

std::vector<GPUUse> mergedUses(std::vector<GPUUse> uses)
{
    const auto key = [](const GPUUse &use) { return std::tie(use.device, use.use.pid); };
    std::ranges::stable_sort(uses, {}, key);
    std::vector<GPUUse> merged;
    for (GPUUse &use : uses) {
        if (merged.empty() || key(merged.back()) != key(use)) {
            merged.push_back(std::move(use));
            continue;
        }
        // An absent value is smaller than any.
        GPUProcessUse &known = merged.back().use;
        known.bytes = std::max(known.bytes, use.use.bytes);
        known.busyFraction = std::max(known.busyFraction, use.use.busyFraction);
        known.isUnused = known.isUnused || use.use.isUnused;
        known.hidesLoad = known.hidesLoad || use.use.hidesLoad;
    }
    return merged;
}

} // namespace corvane
