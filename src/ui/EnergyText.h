#pragma once

#include "timeline/EnergyLedger.h"

#include <QString>

namespace corvane {

/// Watt-hours of so many joules: "0.42 Wh", "41.2 Wh", "412 Wh", "12.3 kWh".
QString energyText(double joules);

/// Hours and minutes, or seconds below a minute: "7 h 12 min", "45 s".
QString durationText(double seconds);

/// "412 Wh today, 7 h 12 min measured"; empty while nothing was measured.
QString energyTodayText(const EnergyReport &report);

/// The same without the time: "412 Wh today".
QString shortEnergyText(const EnergyReport &report);

/// Today and since the start, in all and by the parts that are known, a line each. `npu` is the
/// machine's word for it. Empty while nothing was measured.
QString energyTip(const EnergyReport &report, const QString &npu);

/// The same as paragraphs of an explanation, with a table of the week from the first day on which
/// anything was measured.
QString energyMarkdown(const EnergyReport &report, const QString &npu);

} // namespace corvane
