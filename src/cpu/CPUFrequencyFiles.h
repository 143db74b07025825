#pragma once

#include "cpu/CPUFrequencies.h"
#include "platform/KernelFile.h"

#include <optional>
#include <vector>

namespace corvane {

/// The files in which cpufreq tells what a cluster runs at, kept open. Used on one thread.
class CPUFrequencyFiles {
public:
    explicit CPUFrequencyFiles(const CPUClusterStates &cluster);

    /// `busiest` is the CPU whose frequency stands for the cluster: to ask others interrupts them.
    /// Nothing: none was active.
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
};

} // namespace corvane
