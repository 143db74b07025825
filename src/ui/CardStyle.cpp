#include "ui/CardStyle.h"

#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>

namespace corvane::CardStyle {

QPainterPath continuousCorners(const QRectF &rect, double radius)
{
    // One cubic a corner. With its ends at 1.52866 radii and its handles at 0.27151 it passes
    // through the middle of the quarter circle, where the corner looks roundest.
    const double most = std::min(rect.width(), rect.height()) / 2;
    const double end = std::min(radius * 1.52866, most);
    const double handle = end * 0.27151 / 1.52866;

    const double left = rect.left();
    const double top = rect.top();
    const double right = rect.right();
    const double bottom = rect.bottom();
    QPainterPath path(QPointF(left + end, top));
    path.lineTo(right - end, top);
    path.cubicTo(right - handle, top, right, top + handle, right, top + end);
    path.lineTo(right, bottom - end);
    path.cubicTo(right, bottom - handle, right - handle, bottom, right - end, bottom);
    path.lineTo(left + end, bottom);
    path.cubicTo(left + handle, bottom, left, bottom - handle, left, bottom - end);
    path.lineTo(left, top + end);
    path.cubicTo(left, top + handle, left + handle, top, left + end, top);
    path.closeSubpath();
    return path;
}

namespace {

/// Qt fills shapes of more lines than this on several threads, which costs more than it saves here.
constexpr double fewLines = 32;

/// Fills a part that no edge crosses: in bands, without antialiasing, so that no seam shows.
void fillInside(QPainter &painter, const QRectF &card, const QRectF &dirty)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (double y = card.top(); y < dirty.bottom(); y += fewLines) {
        if (y + fewLines > dirty.top())
            painter.fillRect(QRectF(card.left(), y, card.width(), fewLines), Theme::cardFill);
    }
    painter.restore();
}

} // namespace

void paint(QPainter &painter, const QRectF &card, const QRectF &dirty)
{
    constexpr double edge = 8; // A rectangle this far inside the card touches no corner.
    if (card.adjusted(edge, edge, -edge, -edge).contains(dirty)) {
        fillInside(painter, card, dirty);
        return;
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(continuousCorners(card, cornerRadius), Theme::cardFill);
    painter.setPen(QPen(Theme::cardStroke, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(continuousCorners(card.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius - 0.5));
    painter.restore();
}

} // namespace corvane::CardStyle
