#pragma once

#include <QPolygonF>

namespace corvane {

/// The line with a tiny arc in the place of each sharp bend. Qt's own round joins add up at the
/// edges of nearly straight lines and show as dots; a mitre shows there like a round join, but is a
/// spike at a sharp bend. Stroked with mitres, this line has round joins everywhere.
QPolygonF withRoundBends(const QPolygonF &line);

} // namespace corvane
