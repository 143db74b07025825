#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// The contents of the cpufreq files about the frequencies of one policy, in kHz.
struct CPUFrequencyRange {
    std::optional<std::string> available = {}; ///< Drivers without a table have no such list.
    std::optional<std::string> boost = {};     ///< Frequencies that `available` leaves out.
    std::optional<std::string> minimum = {};
    std::optional<std::string> maximum = {};
};

/// The frequencies in kHz, ascending, that stand for the performance states of a cluster: those
/// that its policies list, else steps of 100 MHz from the least to the greatest. Empty: unknown.
std::vector<std::uint64_t> cpuFrequencyStates(std::span<const CPUFrequencyRange> policies);

/// The frequency of a kernel file in kHz; absent when it does not parse or is implausible.
std::optional<std::uint64_t> parseKHz(std::string_view text);

/// "cpu MHz" of one CPU in /proc/cpuinfo, in kHz. Only x86 kernels write it.
std::optional<std::uint64_t> cpuInfoKHz(std::string_view cpuInfo, int cpu);

/// Time that a policy spent at one frequency, idle time included; in units of 1/USER_HZ s.
struct CPUFrequencyTime {
    std::uint64_t kHz = 0;
    std::uint64_t ticks = 0;

    friend bool operator==(const CPUFrequencyTime &, const CPUFrequencyTime &) = default;
};

/// The lines of `time_in_state`; those that do not parse are skipped.
std::vector<CPUFrequencyTime> parseTimeInState(std::string_view text);

/// The index of the state that is nearest to `kHz`: a core may run beyond both ends of its table.
/// `states` is ascending and not empty.
std::size_t nearestFrequencyState(std::span<const std::uint64_t> states, std::uint64_t kHz);

} // namespace corvane
