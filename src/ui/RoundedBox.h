#pragma once

#include <QBrush>
#include <QRectF>
#include <QRegion>

class QPainter;

namespace corvane {

/// Boxes with round corners: controls, tags, bars. These functions change pen and brush of the
/// painter.

void fillRounded(QPainter &painter, const QRectF &box, double radius, const QBrush &brush);

/// Strokes along the inside of the edge.
void strokeRounded(QPainter &painter, const QRectF &box, double radius, const QColor &color,
                   double width = 1);

/// The ring of a focused control, along the inside of its edge.
void paintFocusRing(QPainter &painter, const QRectF &box, double radius);

/// All whole pixels that a rectangle with round corners touches: the mask of a window.
QRegion roundedRegion(const QRect &rect, int radius);

} // namespace corvane
