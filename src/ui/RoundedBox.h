#pragma once

#include <QBrush>
#include <QRectF>

class QPainter;

namespace corvane {

/// Boxes with round corners, as controls, tags and bars are. They leave the painter with another
/// pen and brush.

void fillRounded(QPainter &painter, const QRectF &box, double radius, const QBrush &brush);

/// Along the inside of the edge.
void strokeRounded(QPainter &painter, const QRectF &box, double radius, const QColor &color,
                   double width = 1);

/// The ring of a control that has the focus, along the inside of its edge.
void paintFocusRing(QPainter &painter, const QRectF &box, double radius);

} // namespace corvane
