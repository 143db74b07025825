#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace corvane {

/// Operating frequencies of the two kinds of CPU cluster in MHz, in the order of the performance
/// states, lowest first. An empty list: unknown; the cluster then counts for the load alone.
struct FrequencyTables {
    /// For channels whose name contains "ECPU": the slower clusters, whatever the system names
    /// them.
    std::vector<double> efficiency = {};
    std::vector<double> performance = {}; ///< For channels whose name contains "PCPU".
};

namespace IORegistryReader {

/// The frequencies of a voltage-state table: records of a 32-bit little-endian frequency in hertz
/// and 32 bits that are not used. A record of frequency 0 is dropped, a trailing partial one
/// ignored.
std::vector<double> parseFrequencies(std::span<const std::byte> table);

/// The same, with a table in kHz (its largest entry below 100 MHz when taken for hertz) converted
/// to MHz. Newer chips exceed 4,294 MHz, which as hertz does not fit into 32 bits.
std::vector<double> parseScaledFrequencies(std::span<const std::byte> table);

/// Numbers of the voltage-state tables that the property "acc-clusters" assigns to the CPU
/// clusters: records of a 32-bit little-endian table number and 32 bits of tier. Empty for any
/// other layout: part of a record, or a number above 255.
std::vector<std::uint32_t> parseClusterTables(std::span<const std::byte> clusters);

/// The table of the slower clusters, of those that "acc-clusters" names: the one with the lowest
/// top frequency that is not the table of the faster clusters. Empty where one of them is unknown.
std::vector<double> slowerTable(const std::vector<std::vector<double>> &tables,
                                const std::vector<double> &faster);

} // namespace IORegistryReader

} // namespace corvane
