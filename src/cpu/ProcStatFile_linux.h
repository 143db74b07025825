#pragma once

#include "cpu/ProcStat.h"
#include "platform/BootClock.h"
#include "platform/TickFile_linux.h"
#include "threads/OneThread.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// /proc/stat of a Linux machine, kept open. It is the most expensive file of a tick: read it once
/// and hand the result on. Used on one thread.
class ProcStatFile {
public:
    /// `root` is the folder below which the kernel files lie.
    explicit ProcStatFile(const std::string &root = "/",
                          std::function<double()> now = secondsSinceBoot);

    /// The counters of all logical CPUs, in processor order; absent when the file cannot be read. A
    /// CPU that went offline keeps its place and its last counters.
    std::optional<std::vector<CoreTicks>> read();

private:
    TickFile m_file;
    CPUTickCounters m_counters = {};
    OneThread m_thread = {};
};

} // namespace corvane
