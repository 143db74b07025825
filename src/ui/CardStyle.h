#pragma once

#include <QPainterPath>
#include <QRectF>

class QPainter;

namespace corvane {

/// The frame that makes a card of its content.
namespace CardStyle {

inline constexpr int padding = 16; ///< Of the content, on all four sides.
inline constexpr double cornerRadius = 14;

/// A rectangle whose corners run into its sides without a jump of curvature. They take half as much
/// again of the sides as quarter circles of that radius would, or as much as there is.
QPainterPath continuousCorners(const QRectF &rect, double radius);

/// Fills the card and strokes it inside its edge. What lies outside `dirty` is clipped away
/// already.
void paint(QPainter &painter, const QRectF &card, const QRect &dirty);

} // namespace CardStyle

} // namespace corvane
