#pragma once

#include "processes/AIWorkload.h"
#include "processes/ProcessRow.h"
#include "records/SystemMetrics.h"

#include <vector>

namespace corvane::test {

/// An invented minute of a 16-core chip with 64 GB under bursts of inference, one sample a second.
/// The same on every call. For pictures and tests.
std::vector<SystemMetrics> scriptedHistory();

/// The newest sample of that minute.
SystemMetrics scriptedCurrent();

/// The same minute without chip readings.
std::vector<SystemMetrics> historyWithoutChip();

/// The same minute with memory that runs out, all at that pressure.
std::vector<SystemMetrics> historyUnderPressure(MemoryPressure pressure);

std::vector<ProcessRow> scriptedProcesses();
std::vector<AIWorkload> scriptedWorkloads();

/// `gibibytes` in bytes.
std::uint64_t gibibytes(double gibibytes);

} // namespace corvane::test
