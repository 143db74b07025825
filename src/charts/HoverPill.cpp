#include "charts/HoverPill.h"

#include "threads/MainThread.h"
#include "ui/CardStyle.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

constexpr double horizontalPadding = 8;
constexpr double verticalPadding = 5;
constexpr double radius = 7;
constexpr double timeHeight = 12;
constexpr double dotSize = 5;
constexpr double dotGap = 5;
constexpr double valueGap = 8;
constexpr double leastComponentGap = 14;
constexpr double shadowReach = 12; ///< The shadow has faded out this far from the box.
constexpr double shadowDrop = 2;

const QFont &timeFont()
{
    static const QFont font = Theme::systemFont(9, QFont::Medium);
    return font;
}

const QFont &labelFont()
{
    static const QFont font = Theme::systemFont(9);
    return font;
}

const QFont &valueFont(PillRow::Style style)
{
    static const QFont total = Theme::systemFont(13, QFont::DemiBold);
    static const QFont values = Theme::systemFont(11, QFont::DemiBold);
    static const QFont component = Theme::roundedFont(10, QFont::DemiBold);
    switch (style) {
    case PillRow::Style::total:
        return total;
    case PillRow::Style::values:
        return values;
    case PillRow::Style::component:
        break;
    }
    return component;
}

double rowHeight(PillRow::Style style)
{
    switch (style) {
    case PillRow::Style::total:
        return 18;
    case PillRow::Style::values:
        return 15;
    case PillRow::Style::component:
        break;
    }
    return 14;
}

double valuesWidth(const PillRow &row)
{
    double width = 0;
    for (const QString &value : row.values)
        width += textWidth(value, valueFont(row.style));
    return width + valueGap * static_cast<double>(std::max<qsizetype>(row.values.size() - 1, 0));
}

double rowWidth(const PillRow &row)
{
    if (row.style != PillRow::Style::component)
        return valuesWidth(row);
    return dotSize + dotGap + textWidth(row.label, labelFont()) + leastComponentGap
        + valuesWidth(row);
}

QSizeF sizeOf(const PillContent &content)
{
    double width = textWidth(content.time, timeFont());
    double height = timeHeight;
    for (const PillRow &row : content.rows) {
        width = std::max(width, rowWidth(row));
        height += rowHeight(row.style);
    }
    return {width + 2 * horizontalPadding, height + 2 * verticalPadding};
}

void paintRow(QPainter &painter, const PillRow &row, const QRectF &place)
{
    const QFont &font = valueFont(row.style);
    const TextLine line{place.top(), place.height()};
    double x = place.left();
    if (row.style == PillRow::Style::component) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(row.color);
        painter.drawEllipse(QRectF(x, place.center().y() - dotSize / 2, dotSize, dotSize));
        painter.setPen(Theme::textSecondary);
        drawText(painter, {x + dotSize + dotGap, line.baseline(labelFont())}, row.label,
                 labelFont());
        x = place.right() - valuesWidth(row);
    }
    painter.setPen(row.color);
    for (const QString &value : row.values) {
        drawText(painter, {x, line.baseline(font)}, value, font);
        x += textWidth(value, font) + valueGap;
    }
}

/// Distance of a point from the edge of a rounded box around the origin; negative inside the box.
double distanceOutside(double x, double y, const QSizeF &box)
{
    const double dx = std::abs(x) - box.width() / 2 + radius;
    const double dy = std::abs(y) - box.height() / 2 + radius;
    return std::hypot(std::max(dx, 0.0), std::max(dy, 0.0)) + std::min(std::max(dx, dy), 0.0)
        - radius;
}

/// The blurred shadow of a box. Across a blurred edge the opacity is the integral of a Gaussian.
QImage shadowOf(const QSizeF &box, double scale)
{
    constexpr double opacity = 0.4;
    constexpr double softness = 3 * 1.41421356;
    const QSizeF size = box + QSizeF(2 * shadowReach, 2 * shadowReach);
    QImage shadow((size * scale).toSize(), QImage::Format_Alpha8);
    for (int row = 0; row < shadow.height(); ++row) {
        uchar *pixels = shadow.scanLine(row);
        const double y = (row + 0.5) / scale - size.height() / 2;
        for (int column = 0; column < shadow.width(); ++column) {
            const double x = (column + 0.5) / scale - size.width() / 2;
            const double coverage = std::erfc(distanceOutside(x, y, box) / softness) / 2;
            pixels[column] = static_cast<uchar>(std::lround(255 * opacity * coverage));
        }
    }
    shadow.setDevicePixelRatio(scale);
    return shadow;
}

} // namespace

PillRow totalRow(const QString &value, const QColor &color)
{
    return {PillRow::Style::total, color, {}, {value}};
}

PillRow valuesRow(const QStringList &values, const QColor &color)
{
    return {PillRow::Style::values, color, {}, values};
}

PillRow componentRow(const QString &label, const QString &value, const QColor &color)
{
    return {PillRow::Style::component, color, label, {value}};
}

QString accessibleText(const PillContent &content)
{
    QStringList parts{content.time};
    for (const PillRow &row : content.rows) {
        QStringList values = row.values;
        if (!row.label.isEmpty())
            values.prepend(row.label);
        parts.append(values.join(row.label.isEmpty() ? QStringLiteral(", ") : QStringLiteral(" ")));
    }
    return parts.join(QStringLiteral(", "));
}

bool HoverPill::show(const PillContent &content)
{
    assertMainThread();
    if (content == m_content)
        return false;
    m_content = content;
    m_size = sizeOf(content);
    return true;
}

void HoverPill::paint(QPainter &painter, const QPointF &origin) const
{
    const double scale = painter.deviceTransform().m11();
    const QSizeF shadowSize = m_size + QSizeF(2 * shadowReach, 2 * shadowReach);
    if (m_shadow.devicePixelRatio() != scale || m_shadow.size() != (shadowSize * scale).toSize())
        m_shadow = shadowOf(m_size, scale);

    painter.drawImage(origin - QPointF(shadowReach, shadowReach - shadowDrop), m_shadow);
    const QRectF box(origin, m_size);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::pillFill);
    painter.drawPath(CardStyle::continuousCorners(box, radius));
    painter.setPen(QPen(Theme::pillStroke, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(
        CardStyle::continuousCorners(box.adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5));
    paintContent(painter, origin + QPointF(horizontalPadding, verticalPadding));
}

void HoverPill::paintContent(QPainter &painter, const QPointF &origin) const
{
    painter.setPen(Theme::textTertiary);
    const TextLine timeLine{origin.y(), timeHeight};
    drawText(painter, {origin.x(), timeLine.baseline(timeFont())}, m_content.time, timeFont());
    const double width = m_size.width() - 2 * horizontalPadding;
    double y = origin.y() + timeHeight;
    for (const PillRow &row : m_content.rows) {
        const double height = rowHeight(row.style);
        paintRow(painter, row, QRectF(origin.x(), y, width, height));
        y += height;
    }
}

} // namespace corvane
