#include "cpu/CPUClusters.h"

#include "platform/KernelText.h"

#include <algorithm>
#include <cstdlib>
#include <set>

using namespace corvane;

/// Four lines: the CPUs that are present and those of each of three kinds; then a capacity a line,
/// of CPU 0, 1 and so on.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::string_view text(reinterpret_cast<const char *>(data), size);
    const auto list = [&text] { return std::string(takeLine(text).value_or(std::string_view())); };
    CPUTopology topology;
    topology.present = list();
    topology.performanceList = list();
    topology.efficiencyList = list();
    topology.lowPowerList = list();
    for (int cpu = 0; const auto line = takeLine(text); ++cpu) {
        if (const auto capacity = parseUnsigned(*line))
            topology.capacities[cpu] = *capacity;
    }

    std::set<int> present;
    forEachCPU(topology.present, [&present](int cpu) { present.insert(cpu); });
    std::size_t sorted = 0;
    for (const std::vector<int> &cpus : cpusByCluster(topology)) {
        if (cpus.empty() || !std::ranges::is_sorted(cpus))
            std::abort();
        sorted += cpus.size();
    }
    if (sorted != present.size())
        std::abort();
    return 0;
}
