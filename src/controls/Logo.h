#pragma once

class QImage;
class QPainter;
class QRectF;

namespace corvane {

/// The small logo stands beside a line of text, with the system's symbol on a Mac. The large one
/// stands alone, as the program's icon does; its heartbeat is a drawing and fills more of it.
enum class LogoSize { small, large };

/// Corner radius of the large logo's plate as a share of its width.
inline constexpr double largeLogoRadius = 20.0 / 72;

/// Paints the program's logo into a square: a heartbeat on a rounded plate. Main thread.
void paintLogo(QPainter &painter, const QRectF &square, LogoSize size = LogoSize::small);

/// The logo as a square picture of that many pixels: the icon of windows, and of a tray item that
/// shows the numbers as text.
QImage signPicture(int pixels);

} // namespace corvane
