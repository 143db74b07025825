#pragma once

#include "tray/StatusItem_mac.h"
#include "ui/MetricText.h"

#include <QPoint>

namespace corvane {

/// The label's numbers as coloured runs of a Mac's status item, five points apart.
std::vector<StatusRun> statusRuns(const LabelNumbers &numbers);

StatusColor statusColor(const QColor &color);

/// The middle of the item's lower edge in Qt's coordinates: y grows downwards from the upper edge
/// of the primary screen.
QPoint statusAnchor(const StatusPlace &place);

} // namespace corvane
