#pragma once

#include "ui/TextLayout.h"

#include <QFont>
#include <QList>
#include <QString>

class QColor;

namespace corvane {

/// How a piece of an explanatory text is emphasised.
enum class Emphasis { none, bold, italic, code };

/// A piece of text of one emphasis, its marks taken off.
struct MarkdownRun {
    QString text = {};
    Emphasis emphasis = Emphasis::none;

    friend bool operator==(const MarkdownRun &, const MarkdownRun &) = default;
};

/// The inline marks `**bold**`, `*italic*` and `` `code` ``; blanks and line breaks are kept as
/// they are. A mark without its closing partner is plain text, and nothing inside code is a mark.
/// For the program's own texts only.
QList<MarkdownRun> markdownRuns(const QString &text);

/// The text without its marks, as a screen reader says it.
QString plainText(const QString &markdown);

/// A piece that lies on one line. `x` is from the left edge of the text.
struct MarkdownPiece {
    MarkdownRun run = {};
    int line = 0;
    double x = 0;
    double width = 0;
};

/// A text broken into lines.
struct MarkdownLayout {
    QList<MarkdownPiece> pieces = {};
    int lineCount = 0;
};

/// Fonts and measures of an explanatory text.
struct MarkdownStyle {
    QFont plain = {};
    QFont bold = {};
    QFont italic = {};
    QFont code = {};
    double codePadding = 0; ///< Left and right of a piece of code.
    double lineHeight = 0;  ///< From one line to the next.
    TextLine codeBox = {};  ///< What lies behind code, in its line.
    double baseline = 0;    ///< From the top of a line.

    const QFont &font(Emphasis emphasis) const;
};

/// The system's font at that size, with code in a monospaced one; lines are for the caller to set.
MarkdownStyle markdownStyle(double pixelSize);

/// Breaks at blanks and at line breaks so that lines are at most `width` wide. A piece of code is
/// never broken at its blanks; what is wider than a whole line is broken anywhere. Pure.
MarkdownLayout layOut(const QList<MarkdownRun> &runs, const MarkdownStyle &style, double width);

/// Paints a text; what has an emphasis of its own has its own colour too.
void paintMarkdown(QPainter &painter, const QPointF &topLeft, const MarkdownLayout &layout,
                   const MarkdownStyle &style, const QColor &color);

} // namespace corvane
