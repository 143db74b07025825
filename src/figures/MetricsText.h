#pragma once

#include "figures/EnergyTotals.h"
#include "figures/Figures.h"

#include <QByteArray>

namespace corvane {

/// The figures in Prometheus' text format (exposition format 0.0.4), as node_exporter's textfile
/// collector reads them: base units, and no series for what is not known. Workloads of the same
/// framework and model are added up.
QByteArray metricsText(const Figures &figures, const EnergyTotals &energy,
                       const std::vector<AIWorkload> &workloads);

/// The text as the value of a label: without line ends, quotes and backslashes that would end it.
QByteArray labelValue(const QString &text);

} // namespace corvane
