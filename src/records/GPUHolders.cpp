#include "records/GPUHolders.h"

#include "records/MachineParts.h"
#include "records/MachineTotals.h"

#include <algorithm>

namespace corvane {

std::optional<std::uint64_t> unattributedMemory(const SystemMetrics &sample,
                                                const std::vector<GPUHolders> &holders)
{
    std::optional<std::uint64_t> bytes;
    for (const GPUCoverage &gpu : gpusWithMemory(coverageOf(sample))) {
        const GPUMetrics *metrics = metricsOf(gpu, sample.chip);
        if (!metrics || !metrics->memoryUsed || metrics->memoryIsLowerBound)
            continue;
        const auto holder = std::ranges::find(holders, gpu.device, &GPUHolders::device);
        const std::uint64_t known = holder == holders.end() ? 0 : holder->knownBytes;
        bytes = bytes.value_or(0) + *metrics->memoryUsed - std::min(known, *metrics->memoryUsed);
    }
    return bytes;
}

} // namespace corvane
