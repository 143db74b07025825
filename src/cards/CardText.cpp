#include "cards/CardText.h"

#include <QFontMetricsF>
#include <QPainter>

namespace corvane {

namespace {

/// The text as it is painted. An elided one has proportional digits, since Qt computes the cut with
/// these.
struct ShownText {
    QString text;
    Digits digits;
    double width;
};

ShownText shownText(const CardText &line)
{
    const double width = textWidth(line.text, line.font, line.digits);
    if (line.maxWidth <= 0 || width <= line.maxWidth)
        return {line.text, line.digits, width};
    const QString cut = elided(line.text, line.font, line.maxWidth);
    return {cut, Digits::proportional, textWidth(cut, line.font, Digits::proportional)};
}

double leftEnd(const CardText &line, double width)
{
    if (line.alignment == Qt::AlignRight)
        return line.baseline.x() - width;
    if (line.alignment == Qt::AlignHCenter)
        return line.baseline.x() - width / 2;
    return line.baseline.x();
}

} // namespace

double CardText::width() const
{
    return shownText(*this).width;
}

QRectF CardText::bounds() const
{
    constexpr double overhang = 2; // By slanted letters and by antialiasing.
    const QFontMetricsF metrics(font);
    const double shownWidth = width();
    return QRectF(leftEnd(*this, shownWidth), baseline.y() - metrics.ascent(), shownWidth,
                  metrics.ascent() + metrics.descent())
        .adjusted(-overhang, -overhang, overhang, overhang);
}

void CardText::paint(QPainter &painter) const
{
    const ShownText shown = shownText(*this);
    painter.setPen(color);
    drawText(painter, {leftEnd(*this, shown.width), baseline.y()}, shown.text, font, shown.digits);
}

} // namespace corvane
