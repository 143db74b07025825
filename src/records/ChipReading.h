#pragma once

#include "records/GPUMetrics.h"
#include "records/MachineCoverage.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace corvane {

/// Share of the GPU's active time that one performance state had.
struct GPUStateShare {
    QString state = {};
    double fraction = 0; ///< 0…1
};

/// The NPU in one sample, where the system publishes it by itself (Linux).
struct NPUMetrics {
    std::optional<double> activeFraction = {}; ///< 0…1
    std::optional<double> watts = {};
    std::optional<double> megahertz = {};
    std::optional<std::uint64_t> memoryUsed = {}; ///< Bytes.
};

/// Parts of the chip that exist and whose values it does not publish now; such a value is 0 in the
/// reading and shown as "–".
struct DeniedParts {
    bool cpuLoad = false;
    bool gpuLoad = false;
    bool cpuWatts = false;
    bool gpuWatts = false;
    bool aneWatts = false;

    bool anyWatts() const { return cpuWatts || gpuWatts || aneWatts; }
};

/// One sample of the chip's telemetry. The watts, fractions and the frequency are always there, but
/// for those that are denied: a chip that could not be read has no reading at all. A record rebuilt
/// from the history file carries the watts and fractions alone.
struct ChipReading {
    double cpuWatts = 0;
    double gpuWatts = 0;
    double aneWatts = 0;
    double cpuActiveFraction = 0;                 ///< 0…1; views multiply by 100.
    double gpuActiveFraction = 0;                 ///< 0…1
    double cpuActiveMHz = 0;                      ///< Frequency while active; 0 when unknown.
    std::optional<QString> gpuDominantState = {}; ///< Empty text: no state was active.
    std::vector<double> cpuCoreUtilizations = {}; ///< 0…1 a logical CPU; empty when unknown.
    std::vector<GPUStateShare> gpuStateResidency = {};
    std::optional<double> cpuTempC = {}; ///< Temperatures are absent when no sensor answered.
    std::optional<double> gpuTempC = {};
    std::optional<double> aneTempC = {};
    std::optional<double> packageTempC = {};
    DeniedParts denied = {};
    /// Each GPU that could be read, where the system publishes them one by one (Linux); the values
    /// above are those of all together. Empty on a Mac.
    std::vector<GPUMetrics> gpus = {};
    /// What the machine tells, shared by all readings until it changes. Null: a whole chip of
    /// Apple.
    std::shared_ptr<const MachineCoverage> coverage = {};
    std::optional<NPUMetrics> npu = {};
    /// The whole package, where the watts of its parts are known too: `cpuWatts` is then that of
    /// the cores, and those of an integrated GPU and of the NPU are parts of it. Else `cpuWatts` is
    /// all that is known of the package.
    std::optional<double> packageWatts = {};
    std::optional<double> systemWatts = {}; ///< The whole machine; never part of the sum of watts.
};

/// A value of a reading as it is shown; absent when it is denied.
inline std::optional<double> unlessDenied(double value, bool isDenied)
{
    return isDenied ? std::nullopt : std::optional(value);
}

/// CPU, GPU and Neural Engine together, in watts; 0 without a reading.
inline double totalWatts(const std::optional<ChipReading> &chip)
{
    return chip ? chip->cpuWatts + chip->gpuWatts + chip->aneWatts : 0;
}

/// The same as it is shown; absent when a part of it is denied.
inline std::optional<double> shownTotalWatts(const std::optional<ChipReading> &chip)
{
    return unlessDenied(totalWatts(chip), chip && chip->denied.anyWatts());
}

} // namespace corvane
