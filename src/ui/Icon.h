#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;

namespace corvane {

/// Paints the icon of that symbol name, tinted, into `target`: on a Mac the system's own symbol of
/// the name, elsewhere, and where it has none, this program's drawing. An unknown name paints
/// nothing. Main thread.
void paintIcon(QPainter &painter, const QString &symbol, const QRectF &target, const QColor &color);

/// The same, and this program's drawing everywhere: in what stands for the program itself.
void paintDrawing(QPainter &painter, const QString &symbol, const QRectF &target,
                  const QColor &color);

} // namespace corvane
