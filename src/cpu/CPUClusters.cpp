#include "cpu/CPUClusters.h"

#include "platform/KernelText.h"

#include <algorithm>
#include <set>

namespace corvane {

namespace {

std::set<int> cpusOf(const std::string &list)
{
    std::set<int> cpus;
    forEachCPU(list, [&cpus](int cpu) { cpus.insert(cpu); });
    return cpus;
}

std::set<int> hybridEfficiencyCPUs(const CPUTopology &topology)
{
    std::set<int> cpus = cpusOf(topology.efficiencyList.value_or(std::string()));
    cpus.merge(cpusOf(topology.lowPowerList.value_or(std::string())));
    for (const int cpu : cpusOf(topology.performanceList.value_or(std::string())))
        cpus.erase(cpu);
    return cpus;
}

/// All but those of the largest capacity: chips with three kinds of core have one fast kind.
std::set<int> smallerCPUs(const std::map<int, std::uint64_t> &capacities)
{
    std::uint64_t largest = 0;
    for (const auto &[cpu, capacity] : capacities)
        largest = std::max(largest, capacity);
    std::set<int> cpus;
    for (const auto &[cpu, capacity] : capacities) {
        if (capacity < largest)
            cpus.insert(cpu);
    }
    return cpus;
}

} // namespace

std::vector<std::vector<int>> cpusByCluster(const CPUTopology &topology)
{
    std::set<int> efficiency = hybridEfficiencyCPUs(topology);
    if (efficiency.empty())
        efficiency = smallerCPUs(topology.capacities);

    std::vector<std::vector<int>> clusters(2);
    for (const int cpu : cpusOf(topology.present))
        clusters[efficiency.contains(cpu) ? 1 : 0].push_back(cpu);

    // On a chip of small cores alone these are the only cluster.
    std::erase_if(clusters, [](const std::vector<int> &cpus) { return cpus.empty(); });
    return clusters;
}

} // namespace corvane
