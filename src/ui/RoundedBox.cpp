#include "ui/RoundedBox.h"

#include "ui/Theme.h"

#include <QPainter>

namespace corvane {

void fillRounded(QPainter &painter, const QRectF &box, double radius, const QBrush &brush)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.drawRoundedRect(box, radius, radius);
}

void strokeRounded(QPainter &painter, const QRectF &box, double radius, const QColor &color,
                   double width)
{
    const double inset = width / 2;
    painter.setPen(QPen(color, width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(box.adjusted(inset, inset, -inset, -inset), radius - inset,
                            radius - inset);
}

void paintFocusRing(QPainter &painter, const QRectF &box, double radius)
{
    constexpr double width = 2;
    strokeRounded(painter, box, radius, Theme::focusRing, width);
}

} // namespace corvane
