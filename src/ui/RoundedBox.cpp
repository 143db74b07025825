#include "ui/RoundedBox.h"

#include "ui/Theme.h"

#include <QPainter>

#include <cmath>

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

QRegion roundedRegion(const QRect &rect, int radius)
{
    QRegion region = rect.adjusted(0, radius, 0, -radius);
    for (int row = 0; row < radius; ++row) {
        const int rise = radius - row - 1;
        const int inset =
            radius - static_cast<int>(std::ceil(std::sqrt(radius * radius - rise * rise)));
        const QRect line(rect.left() + inset, rect.top() + row, rect.width() - 2 * inset, 1);
        region += line;
        region += line.translated(0, rect.height() - 1 - 2 * row);
    }
    return region;
}

} // namespace corvane
