#pragma once

class QPainter;
class QRectF;

namespace corvane {

/// Paints the program's sign into a square: a heartbeat on a rounded plate. Main thread.
void paintLogo(QPainter &painter, const QRectF &square);

} // namespace corvane
