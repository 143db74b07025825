#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;

namespace corvane {

/// Paints the icon of that symbol name, tinted, into `target`. On a Mac the system's own symbol of
/// the name may stand in. An unknown name paints nothing. Main thread.
void paintIcon(QPainter &painter, const QString &symbol, const QRectF &target, const QColor &color);

} // namespace corvane
