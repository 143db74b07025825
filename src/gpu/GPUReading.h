#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// What one GPU told at one instant. What it does not tell is absent.
struct GPUReading {
    std::string device = {};                 ///< The same from one reading to the next.
    bool integrated = false;                 ///< Shares the package with the CPU.
    double seconds = 0;                      ///< When it was read, by the clock of the machine.
    std::string state = {};                  ///< Present performance state; empty when not known.
    std::optional<double> busyFraction = {}; ///< 0…1, as the device itself averages it.
    std::optional<std::uint64_t> idleMilliseconds = {}; ///< Grows while the GPU rests.
    std::optional<std::uint64_t> microjoules = {};      ///< Grows; not of integrated ones.
    std::optional<double> watts = {};                   ///< Not of integrated ones.
    std::optional<double> packageWatts = {};            ///< Of an APU: CPU and GPU together.
    std::vector<double> temperatures = {};              ///< Degrees Celsius.
};

/// Share of the time between two readings that the GPU was busy; nothing when it does not tell.
/// `before` is null where there is no earlier reading.
std::optional<double> gpuBusyShare(const GPUReading *before, const GPUReading &now);

/// Energy of a discrete GPU over `seconds`, at the mean power between the two readings where it
/// counts its energy, else at the power it tells. Nothing when it does neither.
std::optional<double> gpuJoules(const GPUReading *before, const GPUReading &now, double seconds);

} // namespace corvane
