#pragma once

#include <QColor>
#include <QRectF>

#include <span>

class QPainter;

namespace corvane {

/// One segment of a bar that divides a whole.
struct BarSegment {
    double fraction = 0; ///< Of the whole, 0…1.
    QColor color = {};

    friend bool operator==(const BarSegment &, const BarSegment &) = default;
};

/// Paints a capsule with the segments from left to right; the rest of it is track.
void paintSegmentBar(QPainter &painter, const QRectF &bar, std::span<const BarSegment> segments);

} // namespace corvane
