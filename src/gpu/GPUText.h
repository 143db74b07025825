#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// Pure functions over the text of GPU drivers' files. A text that does not parse is absence.

/// Whether a folder has the name of a device on the bus: "0000:01:00.0".
bool isPCIAddress(std::string_view name);

/// An address on the bus as the kernel writes it, "0000:c1:00.0", of one with capital letters or
/// with more digits of the domain, "00000000:C1:00.0". Other texts stay as they are.
std::string kernelPCIAddress(std::string_view text);

/// The share in amdgpu's `gpu_busy_percent`, 0…1.
std::optional<double> parseBusyPercent(std::string_view text);

/// The milliseconds that Intel's render engine slept; absent for a counter that never moved.
std::optional<std::uint64_t> parseIdleTime(std::string_view text);

/// The line in use of amdgpu's `pp_dpm_sclk`, in MHz; absent when no line is marked.
std::optional<double> presentLevelMHz(std::string_view levels);

/// The clock in a file that holds one number of MHz; absent for 0, the clock of a stopped GPU.
std::optional<double> parseClockMHz(std::string_view text);

/// Names the performance state of a GPU by its clock, rounded to 100 MHz: "1100 MHz"; empty without
/// one. Level numbers would not do: the levels of many chips are a least, a present and a greatest
/// clock.
std::string clockStateName(std::optional<double> megahertz);

/// Names NVIDIA's performance state: "P0" to "P15"; empty for any other number.
std::string performanceStateName(std::optional<int> state);

/// The bytes in a file about a GPU's memory, decimal or "0x…"; absent above `largestByteCount`.
std::optional<std::uint64_t> parseMemoryBytes(std::string_view text);

/// Watts of a sensor's microwatts.
std::optional<double> parseMicrowatts(std::string_view text);

} // namespace corvane
