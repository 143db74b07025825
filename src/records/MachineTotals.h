#pragma once

#include "records/SystemMetrics.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace corvane {

/// The metrics of one GPU in a reading; null if it could not be read then.
const GPUMetrics *metricsOf(const GPUCoverage &gpu, const std::optional<ChipReading> &chip);

/// Whether a figure can be shown now.
enum class FigureState : std::uint8_t {
    absent,     ///< The machine has nothing that it could be the figure of.
    asleep,     ///< All hardware that it is the figure of sleeps and is left asleep.
    unreadable, ///< Nothing can be read at the moment.
    known,
};

/// The memory of all graphics cards together; on a machine without any, that of the integrated
/// GPUs.
struct GPUMemoryTotal {
    FigureState state = FigureState::absent;
    bool ofCards = false;      ///< "VRAM"; else a part of the machine's memory.
    bool isLowerBound = false; ///< More may be in use.
    /// Bytes in use on the GPUs that tell them.
    std::uint64_t used = 0;
    /// Bytes of the same GPUs, or of all if none tells what is in use; 0: not known.
    std::uint64_t total = 0;
    int sleeping = 0; ///< GPUs that are left out because they sleep.
    /// Why nothing can be read; `known` where the source merely has no value in this sample.
    Coverage reason = Coverage::known;

    friend bool operator==(const GPUMemoryTotal &, const GPUMemoryTotal &) = default;
};

/// By what the machine told in that sample, as all functions here: a card that sleeps by now
/// counted while it was awake.
GPUMemoryTotal gpuMemoryTotal(const SystemMetrics &sample);

/// Used share of the total, 0…100; absent where one of the two is not known.
std::optional<double> usedPercent(const GPUMemoryTotal &memory);

/// One GPU's share of `GPULoadTotal`.
struct GPULoadShare {
    FigureState state = FigureState::unreadable;
    double fraction = 0; ///< 0…1

    friend bool operator==(const GPULoadShare &, const GPULoadShare &) = default;
};

/// The load of all graphics cards together. Where no card tells its load, an integrated GPU stands
/// in for them; while a card does, integrated GPUs do not count.
struct GPULoadTotal {
    FigureState state = FigureState::absent;
    double fraction = 0;                   ///< Mean of the known shares, 0…1.
    bool isStandIn = false;                ///< Of an integrated GPU, although there is a card.
    std::vector<GPULoadShare> shares = {}; ///< One for each GPU that counts.
    /// Of the only GPU that counts; absent with several.
    std::optional<double> watts = {};
    std::optional<double> megahertz = {};
    std::optional<QString> performanceState = {};
    Coverage reason = Coverage::known; ///< As in `GPUMemoryTotal`.

    friend bool operator==(const GPULoadTotal &, const GPULoadTotal &) = default;
};

GPULoadTotal gpuLoadTotal(const SystemMetrics &sample);

/// Absent where the machine does not tell them, or this sample has none.
std::optional<double> cpuWatts(const SystemMetrics &sample);

/// Sum and maximum over the counted GPUs that tell theirs; absent where none does.
std::optional<double> gpuWatts(const SystemMetrics &sample);
std::optional<double> gpuTemperature(const SystemMetrics &sample);

/// What a sum of watts contains.
enum class PowerParts : std::uint8_t {
    all,
    cpuOnly,  ///< There are graphics cards, and none of them tells its watts.
    gpuOnly,  ///< One GPU; the watts of the CPU are not known.
    gpusOnly, ///< The same with several GPUs.
    notAllGPUs,
    npuOnly,
    gpuAndNPU,  ///< The watts of the CPU are not known.
    gpusAndNPU, ///< The same with several GPUs.
};

/// The watts of package, graphics cards and NPU together, as far as they are known.
struct PowerTotal {
    FigureState state = FigureState::absent; ///< Never `asleep`: absent where watts never exist.
    double watts = 0;
    PowerParts parts = PowerParts::all;

    friend bool operator==(const PowerTotal &, const PowerTotal &) = default;
};

PowerTotal powerTotal(const SystemMetrics &sample);

} // namespace corvane
