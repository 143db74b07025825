#pragma once

#include <QFont>
#include <QPointF>
#include <QString>

class QPainter;

namespace corvane {

/// How digits are set: in their own widths, or each on the advance of the widest, so that a number
/// that changes moves nothing. Done by hand, since Qt 6.4 cannot ask a font for its tabular digits.
enum class Digits { proportional, fixedWidth };

/// A line's box in its parent: the text stands centred in it, whatever the font.
struct TextLine {
    double top = 0;
    double height = 0;

    constexpr double bottom() const { return top + height; }
    double baseline(const QFont &font) const;
};

/// Width of one line of text in points.
double textWidth(const QString &text, const QFont &font, Digits digits = Digits::fixedWidth);

/// Draws one line with the painter's pen; `baseline` is the left end of its baseline.
void drawText(QPainter &painter, const QPointF &baseline, const QString &text, const QFont &font,
              Digits digits = Digits::fixedWidth);

/// The same with the right end given.
void drawTextRight(QPainter &painter, const QPointF &baselineEnd, const QString &text,
                   const QFont &font, Digits digits = Digits::fixedWidth);

/// `text` cut at its right end with one ellipsis so that it is at most `width` wide.
QString elided(const QString &text, const QFont &font, double width);

/// Text from outside made safe for one line: control characters and bidirectional marks become
/// visible replacements, so that a hostile name can neither break a line nor reorder its
/// neighbours.
QString singleLine(const QString &text);

} // namespace corvane
