#include "cards/CardText.h"

#include <QFontMetricsF>
#include <QPainter>

namespace corvane {

namespace {

QString shownText(const CardText &line)
{
    if (line.mostWidth <= 0 || textWidth(line.text, line.font, line.digits) <= line.mostWidth)
        return line.text;
    return elided(line.text, line.font, line.mostWidth);
}

double leftEnd(const CardText &line, double width)
{
    if (line.side == Qt::AlignRight)
        return line.baseline.x() - width;
    if (line.side == Qt::AlignHCenter)
        return line.baseline.x() - width / 2;
    return line.baseline.x();
}

} // namespace

double CardText::width() const
{
    return textWidth(shownText(*this), font, digits);
}

QRectF CardText::bounds() const
{
    constexpr double overhang = 2; // Of slanted letters and of antialiasing.
    const QFontMetricsF metrics(font);
    const double shownWidth = width();
    return QRectF(leftEnd(*this, shownWidth), baseline.y() - metrics.ascent(), shownWidth,
                  metrics.ascent() + metrics.descent())
        .adjusted(-overhang, -overhang, overhang, overhang);
}

void CardText::paint(QPainter &painter) const
{
    const QString shown = shownText(*this);
    painter.setPen(color);
    drawText(painter, {leftEnd(*this, textWidth(shown, font, digits)), baseline.y()}, shown, font,
             digits);
}

} // namespace corvane
