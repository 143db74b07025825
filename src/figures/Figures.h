#pragma once

#include "processes/AIWorkload.h"
#include "processes/ProcessRow.h"
#include "records/SystemMetrics.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace corvane {

/// The CPU's figures. Unknown ones are absent.
struct CPUFigures {
    std::optional<double> busyRatio = {}; ///< 0…1
    std::optional<double> hertz = {};     ///< While active.
    std::vector<double> coreRatios = {};  ///< 0…1 a logical CPU; empty when unknown.
    std::optional<double> watts = {};
    std::optional<double> celsius = {};
};

/// One GPU's figures. Unknown ones are absent.
struct GPUFigures {
    QString device = {}; ///< Identifies the GPU; empty on a Mac.
    QString name = {};
    bool isIntegrated = false;
    bool isAsleep = false; ///< It was left asleep, and has no other figures then.
    std::optional<double> busyRatio = {};
    std::optional<QString> state = {};
    std::optional<double> hertz = {};
    std::optional<double> watts = {};
    std::optional<double> celsius = {};
    std::optional<std::uint64_t> memoryUsed = {}; ///< Bytes.
    bool memoryIsLowerBound = false;
    std::optional<std::uint64_t> memoryTotal = {};
    std::optional<GPULimit> limit = {};
};

/// The figures of the NPU, or of a Mac's Neural Engine. Unknown ones are absent.
struct NPUFigures {
    std::optional<double> busyRatio = {};
    std::optional<double> hertz = {};
    std::optional<double> watts = {};
    std::optional<double> celsius = {};
    std::optional<std::uint64_t> memoryUsed = {}; ///< Bytes.
};

/// All figures of one sample in base units, as other programs get them. What is not known is
/// absent, and never 0.
struct Figures {
    double unixTime = 0; ///< Seconds since 1970-01-01 00:00 UTC.
    QString chip = {};   ///< Name of the machine's chip.
    std::optional<MemorySnapshot> memory = {};
    CPUFigures cpu = {};
    std::vector<GPUFigures> gpus = {};
    std::optional<NPUFigures> npu = {}; ///< Absent: the machine has none.
    std::optional<double> packageWatts = {};
    std::optional<double> packageCelsius = {};
    std::optional<double> systemWatts = {};
};

/// What a survey of the processes found, largest first.
struct SurveyFigures {
    std::vector<ProcessRow> processes = {};
    std::vector<AIWorkload> workloads = {};
};

/// The figures of a sample on the chip of that name.
Figures figuresOf(const SystemMetrics &sample, const QString &chip);

/// Sum of the GPUs' watts; absent where none is known.
std::optional<double> gpuWatts(const Figures &figures);

/// Sum of the known watts of CPU, GPUs and NPU; absent where none is known.
std::optional<double> knownWatts(const Figures &figures);

/// "normal", "warning" or "critical".
QString pressureName(MemoryPressure pressure);

} // namespace corvane
