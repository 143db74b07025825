#pragma once

#include "chip/ChipIdentity.h"
#include "records/SystemMetrics.h"

#include <optional>
#include <vector>

namespace corvane {

/// The three units whose load has a card.
enum class UtilizationKind { cpu, gpu, ane };

/// Load in per cent. The Neural Engine's comes from its power against the chip's ceiling. 0
/// without a reading.
double loadPercent(UtilizationKind kind, const std::optional<ChipReading> &chip,
                   const ChipInfo &info);

/// Power of the unit in watts; 0 without a reading.
double unitWatts(UtilizationKind kind, const std::optional<ChipReading> &chip);

/// Temperature of the unit, else of the package.
std::optional<double> unitTempC(UtilizationKind kind, const std::optional<ChipReading> &chip);

/// "16.69 W · 74°C"; the power alone when there is no temperature above 0.
QString unitStatText(UtilizationKind kind, const std::optional<ChipReading> &chip);

/// What stands under the load: the CPU's frequency, the GPU's dominant state of the newest samples,
/// the Neural Engine's ceiling. Nothing when it is not known.
std::optional<QString> utilizationSubtitle(UtilizationKind kind, const SystemMetrics &current,
                                           const std::vector<SystemMetrics> &history,
                                           const ChipInfo &info);

/// "3.27 GHz" or "996 MHz", with that text between number and unit.
QString frequencyText(double megahertz, const QString &space);

} // namespace corvane
