#pragma once

#include "processes/AIWorkload.h"
#include "processes/ProcessRow.h"
#include "records/SystemMetrics.h"

#include <vector>

namespace corvane::test {

/// A made-up minute of a 16-core, 64 GB chip under bursts of inference, one sample a second. The
/// same each time; made for pictures, tests and benchmarks.
std::vector<SystemMetrics> scriptedHistory();

/// The newest of them, in full.
SystemMetrics scriptedCurrent();

/// The same minute without chip readings.
std::vector<SystemMetrics> historyWithoutChip();

/// The same minute with memory running short, up to a snapshot at that pressure.
std::vector<SystemMetrics> historyUnderPressure(MemoryPressure pressure);

std::vector<ProcessRow> scriptedProcesses();
std::vector<AIWorkload> scriptedWorkloads();

/// `gibibytes` in bytes.
std::uint64_t gibibytes(double gibibytes);

} // namespace corvane::test
