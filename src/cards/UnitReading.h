#pragma once

#include "chip/ChipIdentity.h"
#include "records/SystemMetrics.h"

#include <QStringList>

#include <optional>
#include <vector>

namespace corvane {

/// The compute units of a chip that have a card each.
enum class ComputeUnit { cpu, gpu, ane };

/// What one sample contains about one compute unit. Load and power are 0 in a sample of a whole
/// chip without a reading.
struct UnitReading {
    double loadPercent = 0; ///< 0…100; the Neural Engine's is its power relative to its ceiling.
    double watts = 0;
    bool loadIsDenied = false;   ///< The load is 0 then, shown as "–", and a gap in the chart.
    bool wattsAreDenied = false; ///< The watts likewise.
    bool hasWatts = true; ///< No: this machine does not tell them, and the texts leave them out.
    std::optional<double> tempC = {};          ///< Of the unit, else of the package.
    std::optional<double> megahertz = {};      ///< CPU only: while active, 0 when unknown.
    std::optional<QString> dominantState = {}; ///< GPU only; empty text: no state was active.
    std::optional<double> ceilingWatts = {};   ///< Neural Engine only.
    bool frequencyIsNominal = false;           ///< A constant number, not measured.
    bool integratedStandsIn = false;           ///< An integrated GPU, since the card sleeps.
};

UnitReading unitReading(ComputeUnit unit, const std::optional<ChipReading> &chip,
                        const ChipInfo &info);

/// The same on a machine that is no whole chip of Apple. `machine` is the newest coverage. Samples
/// from the history file tell the load of the CPU alone.
UnitReading unitReading(ComputeUnit unit, const SystemMetrics &sample,
                        const MachineCoverage &machine);

/// Load of the Neural Engine in per cent at that power.
double neuralEngineLoad(double watts, const ChipInfo &info);

/// "P2 · 2.61 GHz": state and clock of one GPU, as far as they are known.
QString gpuClockText(const std::optional<QString> &state, const std::optional<double> &megahertz);

/// The reading of the newest sample, with the GPU state that was dominant most often in the last
/// five samples of the history (oldest first), if any of them has one.
UnitReading newestUnitReading(ComputeUnit unit, const SystemMetrics &current,
                              const std::vector<SystemMetrics> &history, const ChipInfo &info);

/// "16.69 W · 74°C", without what is not told; the power alone when there is no temperature above
/// 0.
QString unitStatText(const UnitReading &reading);

/// The CPU's frequency, the GPU's dominant state or the Neural Engine's ceiling; absent when
/// unknown.
std::optional<QString> unitSubtitle(const UnitReading &reading);

/// The texts of the hover pill: load, power and, for the CPU, the frequency.
QStringList unitPillTexts(const UnitReading &reading);

} // namespace corvane
