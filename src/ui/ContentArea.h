#pragma once

#include <QRectF>

class QWidget;

namespace corvane {

/// A widget lies on whole points, while the edges of what it shows may lie on any device pixel, of
/// which a point has two or more on fine screens. Such a widget covers every point that its content
/// touches, and paints inside its content area. Main thread.

/// Moves the widget so that its content takes this rectangle of the parent. The widget gets a
/// resize event also if only its content area changes.
void placeContent(QWidget &widget, const QRectF &place);

/// The place of the content in the widget: the whole widget, unless it was placed between points.
QRectF contentArea(const QWidget &widget);

/// The rectangle with each edge on the nearest device pixel, at that many pixels to the point.
/// Rectangles with a common edge keep it.
QRectF edgesOnPixels(const QRectF &rect, double scale);

} // namespace corvane
