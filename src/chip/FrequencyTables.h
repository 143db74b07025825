#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace corvane {

/// Operating frequencies of the two kinds of CPU cluster in MHz, in the order of the performance
/// states, lowest first. An empty list: unknown; the cluster then counts for the load alone.
struct FrequencyTables {
    std::vector<double> efficiency = {};  ///< For channels whose name contains "ECPU".
    std::vector<double> performance = {}; ///< For channels whose name contains "PCPU".
};

/// The tables of this Mac. They do not change while it runs. On a Mac alone. Any thread.
FrequencyTables readFrequencyTables();

namespace IORegistryReader {

/// The frequencies of a voltage-state table: records of a 32-bit little-endian frequency in hertz
/// and 32 bits that are not used. A record of frequency 0 is dropped, a trailing partial one
/// ignored.
std::vector<double> parseFrequencies(std::span<const std::byte> table);

/// The same, with a table in kHz (its largest entry below 100 MHz when taken for hertz) brought to
/// MHz: newer chips pass 4294 MHz, which hertz no longer fit into 32 bits.
std::vector<double> parseScaledFrequencies(std::span<const std::byte> table);

/// The table under `key` of the power manager's registry entry; empty when there is none. On a Mac
/// alone.
std::vector<double> readPmgrFrequencies(const std::string &key);

} // namespace IORegistryReader

} // namespace corvane
