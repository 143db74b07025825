#include "ui/ContentArea.h"

#include "threads/MainThread.h"

#include <QCoreApplication>
#include <QResizeEvent>
#include <QVariant>
#include <QWidget>

#include <cmath>

namespace corvane {

namespace {

constexpr auto areaProperty = "contentArea";

/// All whole points that the rectangle touches, but for what rounding errors add.
QRect pointsOf(const QRectF &rect)
{
    constexpr double error = 1e-6;
    const int left = static_cast<int>(std::floor(rect.left() + error));
    const int top = static_cast<int>(std::floor(rect.top() + error));
    const int right = static_cast<int>(std::ceil(rect.right() - error));
    const int bottom = static_cast<int>(std::ceil(rect.bottom() - error));
    return {left, top, right - left, bottom - top};
}

} // namespace

void placeContent(QWidget &widget, const QRectF &place)
{
    assertMainThread();
    const QRect points = pointsOf(place);
    const QRectF area = place.translated(-points.topLeft());
    const bool keepsArea = area == contentArea(widget);
    const bool keepsSize = points.size() == widget.size();
    widget.setProperty(areaProperty, points == place ? QVariant() : QVariant(area));
    widget.setGeometry(points);
    if (keepsArea || !keepsSize)
        return;
    QResizeEvent resized(widget.size(), widget.size());
    QCoreApplication::sendEvent(&widget, &resized);
    widget.update();
}

QRectF contentArea(const QWidget &widget)
{
    const QRectF area = widget.property(areaProperty).toRectF();
    // Anybody may have given the widget another size since.
    return pointsOf(area) == widget.rect() ? area : QRectF(widget.rect());
}

QRectF edgesOnPixels(const QRectF &rect, double scale)
{
    const auto snapped = [scale](double edge) { return std::round(edge * scale) / scale; };
    return {QPointF(snapped(rect.left()), snapped(rect.top())),
            QPointF(snapped(rect.right()), snapped(rect.bottom()))};
}

} // namespace corvane
