#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

namespace corvane {

/// Fills the left part of a row's bar, `share` of its width from 0 to 1 and at least 2 points, with
/// a colour that fades to the right.
void fillShareBar(QPainter &painter, const QRectF &bar, double share, const QColor &color);

} // namespace corvane
