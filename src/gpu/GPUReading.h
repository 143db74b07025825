#pragma once

#include "records/GPUMetrics.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// What was read of one GPU at one instant. A value that its driver does not publish is absent.
struct GPUReading {
    QString device = {};                     ///< Identifies the GPU across readings.
    bool integrated = false;                 ///< Shares the package with the CPU.
    double seconds = 0;                      ///< When it was read, by the clock of the machine.
    std::string state = {};                  ///< Present performance state; empty when unknown.
    std::optional<double> busyFraction = {}; ///< 0…1, as the device itself averages it.
    std::optional<std::uint64_t> idleMilliseconds = {}; ///< Grows while the GPU is idle.
    std::optional<std::uint64_t> microjoules = {}; ///< Energy counter; absent on integrated GPUs.
    std::optional<double> watts = {}; ///< Of an integrated GPU: where its package tells the parts.
    std::optional<double> packageWatts = {}; ///< Power of an APU: CPU and GPU together.
    std::optional<double> coreWatts = {};    ///< Of that the CPU's, where `watts` is the GPU's.
    std::vector<double> temperatures = {};   ///< Degrees Celsius.
    std::optional<double> megahertz = {};    ///< Present clock of its cores.
    std::optional<std::uint64_t> memoryUsed =
        {};                          ///< Bytes, shared ones of an integrated GPU included.
    bool memoryIsLowerBound = false; ///< Only this user's own processes could be added up.
    std::optional<std::uint64_t> memoryOwnUsed =
        {};                             ///< Of an integrated GPU: in the part set aside.
    std::optional<GPULimit> limit = {}; ///< Absent: none, or not known.
};

/// Share of the time between two readings that the GPU was busy; absent when its driver publishes
/// no load. `before` is null where there is no earlier reading.
std::optional<double> gpuBusyShare(const GPUReading *before, const GPUReading &now);

/// Whether so small a busy share counts as idle.
bool isIdleShare(double busyShare);

/// Whether the GPU was idle between the readings. One without any load counts as idle, or reading
/// it would keep it awake for good; one whose load needs an earlier reading counts as busy without
/// it.
bool wasIdle(const GPUReading *before, const GPUReading &now);

/// Mean power between two readings where the GPU has an energy counter, else its present power.
/// Absent when it has neither.
std::optional<double> gpuWatts(const GPUReading *before, const GPUReading &now);

} // namespace corvane
