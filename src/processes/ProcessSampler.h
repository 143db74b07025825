#pragma once

#include "processes/ProcessBridge.h"
#include "processes/ProcessRow.h"

namespace corvane {

/// Ranks processes by memory. Keeps no state; safe from any thread.
class ProcessSampler {
public:
    /// The `n` heaviest processes in the ranking's order, without records that lack a value. A
    /// number that does not fit into 32 bits is a programming error and stops the program.
    static std::vector<ProcessRow> topByRAM(
        std::int64_t n, const ProcessRanking &ranking = ProcessBridge::ranking());
};

} // namespace corvane
