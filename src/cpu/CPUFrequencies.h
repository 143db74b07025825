#pragma once

#include "cpu/CPUClusters.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// What cpufreq tells of the range of one policy, as it stands in the files: kHz.
struct CPUFrequencyRange {
    std::optional<std::string> available = {}; ///< Drivers without a table have no such list.
    std::optional<std::string> boost = {};     ///< Frequencies that `available` leaves out.
    std::optional<std::string> minimum = {};
    std::optional<std::string> maximum = {};
};

/// The frequencies in kHz, ascending, that stand for the performance states of a cluster: those
/// that its policies list, else steps of 100 MHz from the least to the greatest. Empty: not known.
std::vector<std::uint64_t> cpuFrequencyStates(std::span<const CPUFrequencyRange> policies);

/// The frequency of a kernel file in kHz; nothing when it does not parse or no CPU has it.
std::optional<std::uint64_t> parseKHz(std::string_view text);

/// "cpu MHz" of one CPU in /proc/cpuinfo, in kHz. Only x86 kernels write it.
std::optional<std::uint64_t> cpuInfoKHz(std::string_view cpuInfo, int cpu);

/// Time that a policy spent in one frequency, idle time included; in units of 1/USER_HZ s.
struct CPUFrequencyTime {
    std::uint64_t kHz = 0;
    std::uint64_t ticks = 0;

    friend bool operator==(const CPUFrequencyTime &, const CPUFrequencyTime &) = default;
};

/// The lines of `time_in_state`; those that do not parse are passed over.
std::vector<CPUFrequencyTime> parseTimeInState(std::string_view text);

/// The place of the state next to `kHz`: a core may run beyond both ends of its table. `states`
/// is ascending and not empty.
std::size_t nearestFrequencyState(std::span<const std::uint64_t> states, std::uint64_t kHz);

/// CPUs whose frequency is set together, and the folder that tells of it.
struct CPUPolicy {
    std::string folder = {};
    std::vector<int> cpus = {};
};

/// A cluster with its performance states: the entries of its frequency table.
struct CPUClusterStates {
    CPUCluster cluster = {};
    std::vector<CPUPolicy> policies = {};
    std::vector<std::uint64_t> kHz = {};
};

/// What a cluster's cpufreq policies told at one instant.
struct CPUClusterReading {
    /// In the order of the cluster's policies; empty for one that keeps no such times.
    std::vector<std::vector<CPUFrequencyTime>> policyTimes = {};
    /// Present frequency of the CPU that was the busiest since the last reading.
    std::optional<std::uint64_t> presentKHz = {};
};

/// The clusters of the machine whose kernel files lie below `root`.
std::vector<CPUClusterStates> readCPUClusterStates(const std::string &root = "/");

} // namespace corvane
