#pragma once

#include "figures/Figures.h"
#include "timeline/Energy.h"

#include <QByteArray>

namespace corvane {

/// The figures in Prometheus' text format (exposition format 0.0.4), as node_exporter's textfile
/// collector reads them: base units, and no series for what is not known. Workloads of the same
/// framework and model are added up. `energy` is that since the start of the program.
QByteArray metricsText(const Figures &figures, const Energy &energy,
                       const std::vector<AIWorkload> &workloads);

/// The text as the value of a label: without line ends, quotes and backslashes that would end it.
QByteArray labelValue(const QString &text);

} // namespace corvane
