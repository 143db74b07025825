#pragma once

#include "cpu/CPUFrequencies.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// What the kernel publishes about the kinds of CPU. The lists have the form "0-3,8".
struct CPUTopology {
    std::string present = {};
    std::optional<std::string> performanceList =
        {}; ///< Only hybrid x86 chips have this list and the next.
    std::optional<std::string> efficiencyList = {};
    std::optional<std::string> lowPowerList = {}; ///< The newest hybrids have a third kind.
    std::map<int, std::uint64_t> capacities = {}; ///< By CPU; ARM kernels publish one for each CPU.
};

/// The CPUs of each cluster, ascending: the performance cluster and, on hybrid chips, the
/// efficiency cluster behind it. If all CPUs are alike, the first cluster contains all of them;
/// empty only when no CPU is present.
std::vector<std::vector<int>> cpusByCluster(const CPUTopology &topology);

/// CPUs whose frequency is set together, and the folder of the files about it.
struct CPUPolicy {
    std::string folder = {};
    std::vector<int> cpus = {};
};

/// The CPUs of one kind, with their performance states.
struct CPUCluster {
    std::vector<int> cpus = {}; ///< Ascending.
    std::vector<CPUPolicy> policies = {};
    std::vector<std::uint64_t> kHz = {}; ///< Ascending; empty: no frequency is known.
};

/// What the cpufreq policies of a cluster published at one instant.
struct CPUClusterReading {
    /// In the order of the cluster's policies; empty for one that keeps no such times.
    std::vector<std::vector<CPUFrequencyTime>> policyTimes = {};
    /// Present frequency of the CPU that was the busiest since the last reading.
    std::optional<std::uint64_t> presentKHz = {};
};

} // namespace corvane
