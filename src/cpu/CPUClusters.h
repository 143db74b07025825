#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// The CPUs of one kind, which share a performance-state channel.
struct CPUCluster {
    std::string channel = {};   ///< "PCPU" or "ECPU".
    std::vector<int> cpus = {}; ///< Ascending.

    friend bool operator==(const CPUCluster &, const CPUCluster &) = default;
};

/// What the kernel tells of the kinds of CPU. The lists have the form "0-3,8".
struct CPUTopology {
    std::string present = {};
    std::optional<std::string> performanceList = {}; ///< Hybrid x86 alone has this and the next.
    std::optional<std::string> efficiencyList = {};
    std::optional<std::string> lowPowerList = {}; ///< The newest hybrids have a third kind.
    std::map<int, std::uint64_t> capacities = {}; ///< By CPU; ARM kernels tell it of all CPUs.
};

/// The performance cluster and, on hybrid chips, the efficiency cluster behind it. All CPUs are of
/// the first where nothing tells them apart; empty only when no CPU is present.
std::vector<CPUCluster> cpuClusters(const CPUTopology &topology);

/// The clusters of the machine whose kernel files lie below `root`.
std::vector<CPUCluster> readCPUClusters(const std::string &root = "/");

} // namespace corvane
