#pragma once

class QPainter;
class QRectF;

namespace corvane {

/// How the sign is drawn: beside a line of text, or alone, where its heartbeat fills more of it.
enum class LogoSize { small, large };

/// The corners of the large one's plate: their radius for each of its width.
inline constexpr double largeLogoRadius = 20.0 / 72;

/// Paints the program's sign into a square: a heartbeat on a rounded plate. Main thread.
void paintLogo(QPainter &painter, const QRectF &square, LogoSize size = LogoSize::small);

/// The program's own sign in a square of so many pixels, for bars that show the numbers as text
/// and for windows.
QImage signPicture(int pixels);

} // namespace corvane
