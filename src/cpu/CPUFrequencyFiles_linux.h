#pragma once

#include "cpu/CPUClusters.h"
#include "platform/KernelFile_linux.h"
#include "threads/OneThread.h"

#include <optional>
#include <vector>

namespace corvane {

/// The cpufreq files with the frequencies of one cluster, kept open. Used on one thread.
class CPUFrequencyFiles {
public:
    explicit CPUFrequencyFiles(const CPUCluster &cluster);

    /// `busiest` is the CPU whose frequency stands for the cluster: reading that of another one
    /// interrupts it. Absent: no CPU was active.
    CPUClusterReading read(std::optional<int> busiest);

private:
    struct Policy {
        std::vector<int> cpus = {};
        std::optional<KernelFile> timeInState = {};
        std::optional<KernelFile> average = {}; ///< Newer kernels average over some ms.
        std::optional<KernelFile> present = {};
    };

    static std::optional<std::uint64_t> presentKHz(Policy &policy);

    std::vector<Policy> m_policies = {};
    OneThread m_thread = {};
};

} // namespace corvane
