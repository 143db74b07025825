#pragma once

#include "records/ChipReading.h"

namespace corvane {

/// The counted GPUs of a machine in one sample, taken together. A value that none of them has is
/// absent.
struct GPUTotals {
    std::optional<double> activeFraction = {}; ///< Mean, 0…1.
    bool integratedStandsIn =
        false; ///< No card has a known load: it is that of the integrated GPU.
    std::optional<double> megahertz = {};          ///< Of the only GPU whose load counts.
    std::optional<QString> state = {};             ///< Of the same.
    std::optional<double> watts = {};              ///< Sum.
    std::optional<double> tempC = {};              ///< Highest.
    std::optional<std::uint64_t> memoryUsed = {};  ///< Sum of those whose total is known too.
    std::optional<std::uint64_t> memoryTotal = {}; ///< Of the same GPUs, in bytes.
    bool memoryIsLowerBound = false;
    bool isAsleep = false; ///< All of them sleep.
};

/// The metrics of one GPU in a reading; null if it could not be read then.
const GPUMetrics *metricsOf(const GPUCoverage &gpu, const std::optional<ChipReading> &chip);

/// `machine` is the newest coverage, which also knows the memory of a card that sleeps by now.
GPUTotals gpuTotals(const std::optional<ChipReading> &chip, const MachineCoverage &machine);

} // namespace corvane
