#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace corvane {

/// What holds a GPU back.
enum class GPULimit : std::uint8_t { power, temperature, hardware };

/// One GPU in one sample. A value that is not known is absent.
struct GPUMetrics {
    QString device = {};                       ///< Identifies the GPU across readings.
    bool integrated = false;                   ///< Shares the package with the CPU.
    std::optional<double> activeFraction = {}; ///< 0…1
    std::optional<QString> state = {};         ///< Present performance state.
    std::optional<double> megahertz = {};      ///< Present clock of its cores.
    std::optional<double> watts = {};          ///< Of an integrated GPU: its share of the package.
    std::optional<double> tempC = {};          ///< Mean of its sensors.
    std::optional<std::uint64_t> memoryUsed =
        {};                          ///< Bytes, shared ones of an integrated GPU included.
    bool memoryIsLowerBound = false; ///< Only this user's own processes could be added up.
    std::optional<std::uint64_t> memoryOwnUsed =
        {};                             ///< Of an integrated GPU: in the part set aside.
    std::optional<GPULimit> limit = {}; ///< Absent: none, or not known.
};

} // namespace corvane
