#pragma once

#include "chip/ChipIdentity.h"
#include "records/SystemMetrics.h"

#include <QStringList>

#include <optional>
#include <vector>

namespace corvane {

/// The compute units of a chip that have a card each.
enum class ComputeUnit { cpu, gpu, ane };

/// What one sample contains about one compute unit. Load and power are 0 in a sample without a chip
/// reading.
struct UnitReading {
    double loadPercent = 0; ///< 0…100; the Neural Engine's is its power relative to its ceiling.
    double watts = 0;
    bool loadIsDenied = false; ///< The load is 0 then, and shown as "–"; so are the watts.
    bool wattsAreDenied = false;
    std::optional<double> tempC = {};          ///< Of the unit, else of the package.
    std::optional<double> megahertz = {};      ///< CPU only: while active, 0 when unknown.
    std::optional<QString> dominantState = {}; ///< GPU only; empty text: no state was active.
    std::optional<double> ceilingWatts = {};   ///< Neural Engine only.
};

UnitReading unitReading(ComputeUnit unit, const std::optional<ChipReading> &chip,
                        const ChipInfo &info);

/// The reading of the newest sample, with the GPU state that was dominant most often in the last
/// five samples of the history (oldest first), if any of them has one.
UnitReading newestUnitReading(ComputeUnit unit, const SystemMetrics &current,
                              const std::vector<SystemMetrics> &history, const ChipInfo &info);

/// "16.69 W · 74°C"; the power alone when there is no temperature above 0.
QString unitStatText(const UnitReading &reading);

/// The CPU's frequency, the GPU's dominant state or the Neural Engine's ceiling; absent when
/// unknown.
std::optional<QString> unitSubtitle(const UnitReading &reading);

/// The texts of the hover pill: load, power and, for the CPU, the frequency.
QStringList unitPillTexts(const UnitReading &reading);

} // namespace corvane
