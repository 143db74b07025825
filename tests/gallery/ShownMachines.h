#pragma once

#include "records/SystemMetrics.h"

#include <QString>

#include <functional>

namespace corvane::test {

/// One sample of an invented Linux machine, as its label and its panel are drawn in the design. For
/// pictures and tests.
struct ShownMachine {
    QString name = {};     ///< "One graphics card"
    QString chipName = {}; ///< "AMD Ryzen 9 5950X 16-Core Processor"
    SystemMetrics sample = {};
};

/// One graphics card; only an administrator may read the watts of the CPU.
ShownMachine oneCard();

/// A laptop with integrated graphics and NPU that tells all watts, those of its package too.
ShownMachine apuWithNPU();

/// Four cards; the watts of the CPU were opened by an administrator. Without swap.
ShownMachine fourCards();

/// A laptop whose card sleeps, so that its integrated GPU is read instead.
ShownMachine cardAsleep();

/// An integrated GPU without memory figures, and no watts at all.
ShownMachine integratedAlone();

/// Neither GPU nor watts, temperatures or swap; the clock is one constant number.
ShownMachine virtualMachine();

/// The sample after `change` was applied to a copy of its coverage and its reading.
SystemMetrics changed(
    SystemMetrics sample,
    const std::function<void(MachineCoverage &coverage, ChipReading &chip)> &change);

} // namespace corvane::test
