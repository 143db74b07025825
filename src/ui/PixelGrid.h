#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

namespace corvane {

/// Keeps edges sharp at every scale, fractional ones too: a point is rounded to whole device pixels
/// where it is drawn, wherever on the device that is.

/// `rect` moved and sized to whole device pixels, at least one each way.
QRectF snappedToPixels(const QPainter &painter, const QRectF &rect);

/// The nearest point on a device pixel's corner.
QPointF snappedToPixels(const QPainter &painter, const QPointF &point);

/// Fills a line given as a rectangle, snapped.
void fillHairline(QPainter &painter, const QRectF &line, const QColor &color);

} // namespace corvane
