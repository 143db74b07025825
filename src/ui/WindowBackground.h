#pragma once

#include <QImage>
#include <QRegion>

class QPainter;
class QWidget;

namespace corvane {

/// A part of the background of a window, in device pixels of the whole. It runs between two colours
/// so close to each other that plain rounding would show as bands: it is dithered, by a pattern
/// that lies still when a part is drawn anew.
QImage windowBackground(const QSize &window, const QRect &part);

/// Paints what lies under that region of a widget, which is given in the widget's coordinates. It
/// is worked out anew each time, which costs about as much as to copy it from a picture.
void paintWindowBackground(QPainter &painter, const QWidget &widget, const QRegion &region);

} // namespace corvane
