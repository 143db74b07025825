#pragma once

#include "memory/MemoryCounters.h"
#include "records/MemorySnapshot.h"

namespace corvane {

/// Fills a snapshot from the system's memory statistics.
class MemorySampler {
public:
    /// This machine now. Main thread. Never fails: the fields of a source that cannot be read are
    /// 0.
    static MemorySnapshot sample();

    /// The arithmetic, the same on every system. Sizes beyond 64 bits stop the program: no machine
    /// has such counts.
    static MemorySnapshot snapshot(const MemoryCounters &counters);
};

} // namespace corvane
