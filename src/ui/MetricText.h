#pragma once

#include "records/MachineTotals.h"
#include "records/ModelRoom.h"

#include <QColor>
#include <QString>

#include <optional>
#include <vector>

namespace corvane {

/// What label, panel and menus show of a sample, without its long lists, so that a closed view
/// keeps it at next to no cost. A value that the chip denies is absent; a whole chip without a
/// reading is all zeros.
struct MetricValues {
    MetricValues(const SystemMetrics &current); // Implicit: every view takes whole samples.

    MemorySnapshot memory = {};
    std::optional<double> cpuPercent = {};
    std::optional<double> cpuWatts = {};

    std::optional<ModelRoom> room = {}; ///< Absent where the machine does not tell it.

    bool isWhole = true; ///< As in `MachineCoverage`.

    // Of a whole chip alone.
    std::optional<double> gpuPercent = {};
    std::optional<double> gpuWatts = {};
    std::optional<double> aneWatts = {};
    std::optional<double> totalWatts = {};

    // Of all other machines.
    GPUMemoryTotal gpuMemory = {};
    GPULoadTotal gpuLoad = {};
    PowerTotal power = {};
    bool cpuWattsAreLocked = false;
    std::optional<double> cpuMHz = {};
    bool cpuFrequencyIsNominal = false;
    std::optional<double> cpuTempC = {};
    bool hasNPU = false;
    std::optional<NPUMetrics> npu = {};
};

/// One metric as text: a row of the panel and of the label's menus.
struct MetricRow {
    QString title = {};
    QColor color = {};
    QString value = {};
    QString detail = {};      ///< May be empty.
    QString explanation = {}; ///< For a tool tip, several lines; may be empty.

    friend bool operator==(const MetricRow &, const MetricRow &) = default;
};

/// The rows of a whole chip are memory, GPU, CPU, ANE and swap; those of another machine memory,
/// the GPUs' memory, GPU, CPU, NPU and swap, each where it exists.
std::vector<MetricRow> metricRows(const MetricValues &values);

/// The row as one line of text: "Memory: 45.74 GB / 64 GB, 71 %".
QString inOneLine(const MetricRow &row);

/// The total power as text.
struct PowerText {
    QString watts = {}; ///< "49.7 W"; empty where there are no watts to read.
    QColor color = {};
    QString parts = {}; ///< What the sum contains, where it is not all: "GPU only".

    friend bool operator==(const PowerText &, const PowerText &) = default;
};

PowerText powerText(const MetricValues &values);

/// The quantities that the label can show, in its order.
enum class LabelKind { memory, vram, gpu, power, cpu };

/// "Memory", "VRAM", "GPU", "Power" or "CPU".
QString labelName(LabelKind kind);

/// One of the label's numbers: its text in the menu bar, its colour, and the same in words.
struct LabelNumber {
    LabelKind kind = LabelKind::memory;
    QString text = {};
    QColor color = {};
    QString words = {};

    friend bool operator==(const LabelNumber &, const LabelNumber &) = default;
};

/// From left to right.
using LabelNumbers = std::vector<LabelNumber>;

/// Two to four numbers. A whole chip has memory load, GPU load and total power: "63", "41", "12W".
/// Another machine has the memory load, the load of its graphics cards' memory and the GPU load
/// where these exist, and last the watts, or the CPU load where there are none to read. Loads are
/// whole per cents, rounded down.
LabelNumbers labelNumbers(const MetricValues &values);

/// The numbers in one line: "63 41 12W".
QString inOneLine(const LabelNumbers &numbers);

/// The numbers in words, for tool tips: "Memory 63 %, GPU 41 %, Power 12 W".
QString inWords(const LabelNumbers &numbers);

/// The load as one of the label's numbers; an absent one is "–".
LabelNumber loadNumber(LabelKind kind, std::optional<double> percent, const QColor &color);

} // namespace corvane
