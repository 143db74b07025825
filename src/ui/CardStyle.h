#pragma once

#include <QPainterPath>
#include <QRectF>

class QPainter;

namespace corvane {

/// The frame of a card around its content.
namespace CardStyle {

inline constexpr int padding = 16; ///< Between frame and content, on all four sides.
inline constexpr double cornerRadius = 14;

/// A rectangle whose corners run into its sides without a jump of curvature. A corner takes 1.5
/// times as much of a side as a quarter circle of that radius, at most half of it.
QPainterPath continuousCorners(const QRectF &rect, double radius);

/// Fills the card and strokes it inside its edge. The painter already clips to `dirty`.
void paint(QPainter &painter, const QRectF &card, const QRectF &dirty);

} // namespace CardStyle

} // namespace corvane
