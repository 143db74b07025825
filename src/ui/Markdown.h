#pragma once

#include "ui/TextLayout.h"

#include <QFont>
#include <QList>
#include <QString>

class QColor;

namespace corvane {

/// Emphasis of a piece of an explanatory text.
enum class Emphasis {
    none,
    bold,
    italic,
    code,
    command ///< Code in smaller letters, so that a long one fits into a line.
};

/// A piece of text of one emphasis, without its marks.
struct MarkdownRun {
    QString text = {};
    Emphasis emphasis = Emphasis::none;

    friend bool operator==(const MarkdownRun &, const MarkdownRun &) = default;
};

/// Splits a text at the inline marks `**bold**`, `*italic*`, `` `code` `` and ``` ``command`` ```;
/// spaces and line breaks are kept. A mark without its closing partner is plain text, and nothing
/// inside code is a mark. Meant for the program's own texts.
QList<MarkdownRun> markdownRuns(const QString &text);

/// The text without its marks, for screen readers.
QString plainText(const QString &markdown);

/// A piece on one line. `x` is measured from the left edge of the text.
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
    QFont command = {};
    double codePadding = 0; ///< Left and right of a piece of code.
    double lineHeight = 0;  ///< From one line to the next.
    TextLine codeBox = {};  ///< Background of code, from the top of a line.
    double baseline = 0;    ///< From the top of a line.

    const QFont &font(Emphasis emphasis) const;
};

/// The system's font at that size, and a monospaced one for code. The caller sets the lines.
MarkdownStyle markdownStyle(double pixelSize);

/// Breaks a text at spaces and line breaks so that lines are at most `width` wide. Code is not
/// broken at its spaces; a word that is wider than a line is broken anywhere. Pure.
MarkdownLayout layOut(const QList<MarkdownRun> &runs, const MarkdownStyle &style, double width);

/// Paints a text. `color` is that of plain and italic text; bold text and code have their own.
void paintMarkdown(QPainter &painter, const QPointF &topLeft, const MarkdownLayout &layout,
                   const MarkdownStyle &style, const QColor &color);

} // namespace corvane
