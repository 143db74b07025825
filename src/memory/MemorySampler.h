#pragma once

#include "memory/MemoryCounters.h"
#include "records/MemorySnapshot.h"

namespace corvane {

/// Fills a snapshot from the system's memory statistics.
class MemorySampler {
public:
    /// This machine now. Main thread. Never fails: a source that cannot be read leaves its fields
    /// 0.
    static MemorySnapshot sample();

    /// The arithmetic, the same on every system. Sizes that leave 64 bits end the program: no
    /// machine has such counts.
    static MemorySnapshot snapshot(const MemoryCounters &counters);
};

} // namespace corvane
