#include "lists/ShareBar.h"

#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>

namespace corvane {

void fillShareBar(QPainter &painter, const QRectF &bar, double share, const QColor &color)
{
    constexpr double minFill = 2;
    QRectF fill = bar;
    fill.setWidth(std::max(bar.width() * share, minFill));
    QLinearGradient gradient(fill.topLeft(), fill.topRight());
    gradient.setColorAt(0, Theme::withOpacity(color, 0.85));
    gradient.setColorAt(1, Theme::withOpacity(color, 0.45));
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    const double radius = std::min(bar.height(), fill.width()) / 2;
    painter.drawRoundedRect(fill, radius, bar.height() / 2);
}

} // namespace corvane
