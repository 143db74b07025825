#pragma once

#include "cpu/CPUClusters.h"
#include "platform/KernelFile_linux.h"
#include "threads/OneThread.h"

#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// Reads the cpufreq files with the frequencies of one cluster. Used on one thread.
class CPUFrequencyFiles {
public:
    explicit CPUFrequencyFiles(const CPUCluster &cluster);

    /// `busiest` is the CPU whose frequency stands for the cluster: reading that of another one
    /// interrupts it. Absent: no CPU was active.
    CPUClusterReading read(std::optional<int> busiest);

private:
    struct Policy {
        std::vector<int> cpus = {};
        /// Read every time, so it may stay open; the busiest CPU changes, so others do not.
        std::optional<KernelFile> timeInState = {};
        std::string folder = {};
    };

    std::vector<Policy> m_policies = {};
    OneThread m_thread = {};
};

} // namespace corvane
