#pragma once

#include <QString>

#include <optional>

namespace corvane {

/// One GPU in one sample. A value that is not known is absent.
struct GPUMetrics {
    QString device = {};                       ///< Identifies the GPU across readings.
    bool integrated = false;                   ///< Shares the package with the CPU.
    std::optional<double> activeFraction = {}; ///< 0…1
    std::optional<QString> state = {};         ///< Present performance state.
    std::optional<double> watts = {};          ///< Absent on integrated GPUs.
    std::optional<double> tempC = {};          ///< Mean of its sensors.
};

} // namespace corvane
