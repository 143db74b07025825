#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;

namespace corvane {

/// Paints the icon of that symbol name in one colour into `target`: on a Mac the system's symbol of
/// that name; elsewhere, and if the system has none, the drawing in `resources/icons/`. An unknown
/// name paints nothing. Main thread.
void paintIcon(QPainter &painter, const QString &symbol, const QRectF &target, const QColor &color);

/// The same with the drawing on every system, for the logo.
void paintDrawing(QPainter &painter, const QString &symbol, const QRectF &target,
                  const QColor &color);

} // namespace corvane
