#include "cards/SegmentBar.h"

#include "ui/PixelGrid.h"
#include "ui/RoundedBox.h"
#include "ui/Theme.h"

#include <QPainter>

namespace corvane {

void paintSegmentBar(QPainter &painter, const QRectF &bar, std::span<const BarSegment> segments)
{
    painter.save();
    // Each segment is the whole capsule, clipped to a rectangle: a clip path would leave ragged
    // ends.
    const auto fill = [&](double from, double to, const QColor &color) {
        const double left =
            snappedToPixels(painter, QPointF(bar.left() + bar.width() * from, 0)).x();
        const double right =
            snappedToPixels(painter, QPointF(bar.left() + bar.width() * to, 0)).x();
        if (right <= left)
            return;
        painter.setClipRect(QRectF(left, bar.top(), right - left, bar.height()));
        fillRounded(painter, bar, bar.height() / 2, color);
    };
    fill(0, 1, Theme::track);
    double from = 0;
    for (const BarSegment &segment : segments) {
        fill(from, from + segment.fraction, segment.color);
        from += segment.fraction;
    }
    painter.restore();
}

} // namespace corvane
