#pragma once

#include <QImage>
#include <QRegion>

class QPainter;
class QWidget;

namespace corvane {

/// A part of a window's background; window and part are in device pixels. The two colours of the
/// gradient are so close to each other that plain rounding would show as bands, so it is dithered.
/// A pixel is the same whichever part it is drawn with.
QImage windowBackground(const QSize &window, const QRect &part);

/// Paints the background of the widget's window below that region of the widget. It is computed
/// each time, which costs about as much as copying it from a picture.
void paintWindowBackground(QPainter &painter, const QWidget &widget, const QRegion &region);

} // namespace corvane
