#pragma once

#include "cpu/CPUClusters.h"
#include "cpu/CoreTicks.h"

#include <optional>
#include <vector>

namespace corvane {

/// What the kernel published about the CPUs at one instant. A list is empty when its source could
/// not be read.
struct CPUSnapshot {
    std::vector<CoreTicks> ticks = {};            ///< By CPU number.
    std::vector<CPUClusterReading> clusters = {}; ///< In the order of the chip's clusters.
};

/// Load of all CPUs between two snapshots.
struct CPULoad {
    /// 0…1, mean over the CPUs by the time that each of them counted; absent when none did.
    std::optional<double> activeFraction = {};
    double activeMHz = 0; ///< Mean frequency of the active time; 0 when unknown.
};

/// Both unknown when one of the snapshots has no ticks. Time at an unknown frequency counts for the
/// load alone.
CPULoad cpuLoad(const CPUSnapshot &from, const CPUSnapshot &to,
                const std::vector<CPUCluster> &clusters);

/// The CPU of a list that was active for longest between two readings; absent when none was.
std::optional<int> busiestCPU(const std::vector<int> &cpus, const std::vector<CoreTicks> &before,
                              const std::vector<CoreTicks> &now);

} // namespace corvane
