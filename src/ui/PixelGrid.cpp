#include "ui/PixelGrid.h"

#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <cmath>

namespace corvane {

QRectF snappedToPixels(const QPainter &painter, const QRectF &rect)
{
    const QTransform toDevice = painter.deviceTransform();
    const QRectF device = toDevice.mapRect(rect);
    // The size is rounded separately, so that equal lines are equally thick everywhere.
    const QRectF snapped(std::round(device.x()), std::round(device.y()),
                         std::max(1.0, std::round(device.width())),
                         std::max(1.0, std::round(device.height())));
    return toDevice.inverted().mapRect(snapped);
}

QPointF snappedToPixels(const QPainter &painter, const QPointF &point)
{
    const QTransform toDevice = painter.deviceTransform();
    const QPointF device = toDevice.map(point);
    return toDevice.inverted().map(QPointF(std::round(device.x()), std::round(device.y())));
}

void fillHairline(QPainter &painter, const QRectF &line, const QColor &color)
{
    // Without antialiasing, which would blur an edge that a rounding error moves off its pixel.
    const bool antialiased = painter.testRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(snappedToPixels(painter, line), color);
    painter.setRenderHint(QPainter::Antialiasing, antialiased);
}

} // namespace corvane
