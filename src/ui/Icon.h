#pragma once

#include "ui/SystemSymbol.h"

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;

namespace corvane {

/// Paints the icon of that symbol name in one colour into `target`: on a Mac the system's symbol of
/// that name; elsewhere, and if the system has none, the drawing in `resources/icons/`. An unknown
/// name paints nothing. Main thread.
/// The weight is that of the system's symbol; a drawing has one of its own.
void paintIcon(QPainter &painter, const QString &symbol, const QRectF &target, const QColor &color,
               SymbolWeight weight = SymbolWeight::medium);

/// The same with the drawing on every system, for pictures of the program itself.
void paintDrawing(QPainter &painter, const QString &symbol, const QRectF &target,
                  const QColor &color);

} // namespace corvane
