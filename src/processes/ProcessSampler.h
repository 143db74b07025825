#pragma once

#include "processes/ProcessBridge.h"
#include "processes/ProcessRow.h"

#include <span>

namespace corvane {

/// Ranks processes by memory. Keeps no state; safe from any thread.
class ProcessSampler {
public:
    /// The `n` heaviest processes, largest first. A number that does not fit into 32 bits is a
    /// programming error and stops the program.
    static std::vector<ProcessRow> topByRAM(std::int64_t n, const std::string &root = "/");

    /// Rows in the order of the records, without those that lack a value.
    static std::vector<ProcessRow> rows(std::span<const ProcessRecord> records);
};

} // namespace corvane
