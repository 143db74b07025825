#pragma once

#include "records/SystemMetrics.h"

#include <QColor>
#include <QString>

#include <array>
#include <optional>

namespace corvane {

/// What label, panel and menus show of a sample. It has no lists, so a closed view keeps it at next
/// to no cost. A value that the chip denies is absent; an absent chip reading is all zeros.
struct MetricValues {
    MetricValues(const SystemMetrics &current); // Implicit: every view takes whole samples.

    MemorySnapshot memory = {};
    std::optional<double> gpuPercent = {};
    std::optional<double> gpuWatts = {};
    std::optional<double> cpuPercent = {};
    std::optional<double> cpuWatts = {};
    std::optional<double> aneWatts = {};
    std::optional<double> totalWatts = {};
};

/// One metric as text: a row of the panel and of the label's menus.
struct MetricRow {
    QString title = {};
    QColor color = {};
    QString value = {};
    QString detail = {};

    friend bool operator==(const MetricRow &, const MetricRow &) = default;
};

/// Memory, GPU, CPU, ANE and swap, in this order.
std::array<MetricRow, 5> metricRows(const MetricValues &values);

/// The row as one line of text: "Memory: 45.74 GB / 64 GB, 71 %".
QString inOneLine(const MetricRow &row);

/// One of the label's three numbers: its text in the menu bar, its colour, and the same in words.
struct LabelNumber {
    QString text = {};
    QColor color = {};
    QString words = {};

    friend bool operator==(const LabelNumber &, const LabelNumber &) = default;
};

using LabelNumbers = std::array<LabelNumber, 3>;

/// Memory load, GPU load and total power, in this order: "63", "41", "12W". Loads are whole per
/// cents, rounded down.
LabelNumbers labelNumbers(const MetricValues &values);

/// The numbers in one line: "63 41 12W".
QString inOneLine(const LabelNumbers &numbers);

/// The numbers in words, for tool tips: "Memory 63 %, GPU 41 %, Power 12 W".
QString inWords(const LabelNumbers &numbers);

} // namespace corvane
