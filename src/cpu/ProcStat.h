#pragma once

#include "cpu/CoreTicks.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace corvane {

/// Cumulative times of one CPU from /proc/stat, in units of 1/USER_HZ s (proc_stat(5)). Guest times
/// are left out: they are inside user and nice already.
struct CPUTimes {
    enum Column : std::size_t { user, nice, system, idle, ioWait, irq, softIrq, steal, columns };

    std::array<std::uint64_t, columns> ticks = {};
};

/// One "cpuN" line.
struct CPULine {
    std::size_t cpu = 0;
    CPUTimes times = {};
};

/// Cuts the text of /proc/stat behind the next CPU and returns that CPU; absent at the end. Lines
/// that do not parse are skipped; the first line that is not about CPUs ends the iteration, since
/// what follows can be long.
std::optional<CPULine> takeCPULine(std::string_view &text);

/// Keeps the tick counters of all CPUs by their numbers, from one reading of /proc/stat to the
/// next. A counter of the kernel may run backwards (idle and iowait do): it then counts as
/// unchanged.
class CPUTickCounters {
public:
    /// The counters after this reading; absent when it contains no CPU. A CPU that is not in it
    /// keeps its counters; one that was never in one has zeros, and starts from them if it joins
    /// later.
    std::optional<std::vector<CoreTicks>> update(std::string_view procStat);

private:
    struct Counter {
        CPUTimes last = {};
        CPUTimes sum = {}; ///< Of all steps forward.
        bool seen = false;
    };
    std::vector<Counter> m_counters; ///< By CPU number.
};

} // namespace corvane
