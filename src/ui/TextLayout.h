#pragma once

#include <QFont>
#include <QPointF>
#include <QString>

class QPainter;

namespace corvane {

/// How digits are set: in their own widths, or each on the advance of the widest, so that a
/// changing number moves nothing else. This is done here, since Qt 6.4 cannot select tabular digits
/// of a font.
enum class Digits { proportional, fixedWidth };

/// The vertical place of one line of text, which is centred in it in any font.
struct TextLine {
    double top = 0;
    double height = 0;

    constexpr double bottom() const { return top + height; }

    /// Where the baseline lies so that ascent and descent together are centred.
    double baseline(const QFont &font) const;
};

/// Width of one line of text in points. Main thread, as is drawing.
double textWidth(const QString &text, const QFont &font, Digits digits = Digits::fixedWidth);

/// Draws one line with the pen of the painter; `baseline` is the left end of its baseline.
void drawText(QPainter &painter, const QPointF &baseline, const QString &text, const QFont &font,
              Digits digits = Digits::fixedWidth);

/// The same by the right end of the baseline.
void drawTextRight(QPainter &painter, const QPointF &baselineEnd, const QString &text,
                   const QFont &font, Digits digits = Digits::fixedWidth);

/// `text` cut at its end, with an ellipsis, so that it is at most `width` wide.
QString elided(const QString &text, const QFont &font, double width);

/// Makes text from outside safe for one line: control characters, bidirectional marks and other
/// invisible characters become replacement characters, so that a hostile name can neither break a
/// line, reorder what stands beside it, nor look like another name. At most 512 characters are
/// kept.
QString singleLine(const QString &text);

/// The text of a tool tip whose lines are shown as they are, with no markup in them; long ones are
/// wrapped.
QString plainToolTip(const QString &text);

} // namespace corvane
