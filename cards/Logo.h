#pragma once

class QPainter;
class QRectF;

namespace corvane {

/// The plate's corners: their radius for each of its width.
inline constexpr double logoRadius = 8.0 / 28;

/// Paints the program's sign into a square: a heartbeat on a rounded plate. Main thread.
void paintLogo(QPainter &painter, const QRectF &square);

} // namespace corvane
