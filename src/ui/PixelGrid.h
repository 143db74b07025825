#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

namespace corvane {

/// Keeps edges sharp at every scale, also at fractional ones: places are rounded to whole pixels of
/// the device, through the transformation of the painter.

/// `rect` with its place and its size rounded to whole device pixels; at least one pixel wide and
/// high.
QRectF snappedToPixels(const QPainter &painter, const QRectF &rect);

/// The nearest corner of a device pixel.
QPointF snappedToPixels(const QPainter &painter, const QPointF &point);

/// Fills a line, given as a rectangle, after snapping it.
void fillHairline(QPainter &painter, const QRectF &line, const QColor &color);

} // namespace corvane
