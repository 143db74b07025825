#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace corvane {

/// Whether the machine tells a quantity, and why not.
enum class Coverage : std::uint8_t {
    absent,      ///< No such hardware: nothing of it is shown.
    asleep,      ///< The hardware sleeps and is left asleep.
    locked,      ///< Only an administrator may read it.
    unpublished, ///< Its driver does not publish it.
    noLibrary,   ///< The vendor's library, which alone can read it, is not installed.
    newDriver,   ///< The driver was updated and waits for a restart of the machine.
    known,
};

/// Whether the hardware is there but does not tell the quantity now.
constexpr bool isDenied(Coverage coverage)
{
    return coverage != Coverage::absent && coverage != Coverage::known;
}

/// What one GPU is and tells. A GPU that falls asleep keeps its name and its amount of memory.
struct GPUCoverage {
    QString device = {};           ///< As in `GPUMetrics`.
    QString name = {};             ///< "NVIDIA GeForce RTX 4090"; never empty.
    bool integrated = false;       ///< Shares the package with the CPU.
    bool usesSystemMemory = false; ///< Its memory is part of the machine's.
    Coverage load = Coverage::unpublished;
    Coverage watts = Coverage::unpublished;
    Coverage memory = Coverage::unpublished;
    std::optional<std::uint64_t> memoryTotal = {}; ///< Bytes; own and shared together.
    std::optional<std::uint64_t> memoryOwn =
        {}; ///< Of an integrated GPU: the part that is set aside.

    friend bool operator==(const GPUCoverage &, const GPUCoverage &) = default;
};

/// What this machine has and tells. It belongs to the machine, not to a sample, and changes while
/// the program runs: a permission is given, a card is plugged in, falls asleep or loses its driver.
struct MachineCoverage {
    /// A chip of Apple: everything that the dashboard was designed for is known, and nothing below
    /// applies. Also before the first sample.
    bool isWhole = true;

    Coverage cpuWatts = Coverage::absent;
    Coverage cpuTemperature = Coverage::absent;
    Coverage cpuFrequency = Coverage::absent;
    bool cpuFrequencyIsNominal = false;       ///< The kernel knows one constant number only.
    Coverage packageWatts = Coverage::absent; ///< Of CPU, GPU and all else on the package.
    Coverage npuLoad = Coverage::absent;      ///< Absent: the machine has no NPU.
    Coverage npuWatts = Coverage::absent;
    Coverage systemWatts = Coverage::absent; ///< Of the whole machine.
    QString systemWattsSource = {};          ///< "battery", "power supply", "ACPI power meter".
    std::vector<GPUCoverage> gpus = {};      ///< In the order of their addresses.

    friend bool operator==(const MachineCoverage &, const MachineCoverage &) = default;
};

} // namespace corvane
