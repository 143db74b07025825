#include "ui/Markdown.h"

#include "ui/RoundedBox.h"
#include "ui/Theme.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

bool isCode(Emphasis emphasis)
{
    return emphasis == Emphasis::code || emphasis == Emphasis::command;
}

struct Mark {
    QLatin1StringView text;
    Emphasis emphasis;
};

constexpr Mark marks[] = {{"``"_L1, Emphasis::command},
                          {"`"_L1, Emphasis::code},
                          {"**"_L1, Emphasis::bold},
                          {"*"_L1, Emphasis::italic}};

/// A word, a run of spaces or a line break.
struct Token {
    enum class Kind { word, spaces, lineBreak };
    Kind kind = Kind::word;
    MarkdownRun run = {};
};

Token::Kind kindOf(QChar character)
{
    if (character == u'\n')
        return Token::Kind::lineBreak;
    return character == u' ' ? Token::Kind::spaces : Token::Kind::word;
}

QList<Token> tokens(const QList<MarkdownRun> &runs)
{
    QList<Token> list;
    for (const MarkdownRun &run : runs) {
        if (isCode(run.emphasis)) {
            list.append({Token::Kind::word, run});
            continue;
        }
        qsizetype start = 0;
        while (start < run.text.size()) {
            const Token::Kind kind = kindOf(run.text[start]);
            qsizetype end = start + 1;
            while (kind != Token::Kind::lineBreak && end < run.text.size()
                   && kindOf(run.text[end]) == kind)
                ++end;
            list.append({kind, {run.text.mid(start, end - start), run.emphasis}});
            start = end;
        }
    }
    return list;
}

/// Fills lines from the left.
class LineBreaker {
public:
    LineBreaker(const MarkdownStyle &style, double width) : m_style(style), m_width(width) { }

    MarkdownLayout breakUp(const QList<Token> &list)
    {
        qsizetype index = 0;
        while (index < list.size()) {
            const Token &token = list[index];
            if (token.kind == Token::Kind::lineBreak) {
                newLine();
                ++index;
            } else if (token.kind == Token::Kind::spaces) {
                m_spaces = token.run;
                ++index;
            } else {
                index = placeUnit(list, index);
            }
        }
        m_layout.lineCount = m_line + 1;
        return m_layout;
    }

private:
    /// Words without a space between them stay together, whatever their emphasis.
    qsizetype placeUnit(const QList<Token> &list, qsizetype first)
    {
        qsizetype end = first;
        double unitWidth = 0;
        while (end < list.size() && list[end].kind == Token::Kind::word)
            unitWidth += width(list[end++].run);

        const double spacesWidth = m_x > 0 ? width(m_spaces) : 0;
        if (m_x > 0 && m_x + spacesWidth + unitWidth > m_width)
            newLine();
        else if (m_x > 0 && !m_spaces.text.isEmpty())
            append(m_spaces, spacesWidth);
        m_spaces = {};
        for (qsizetype i = first; i < end; ++i)
            place(list[i].run);
        return end;
    }

    void place(MarkdownRun run)
    {
        while (m_x + width(run) > m_width && run.text.size() > 1) {
            if (m_x > 0) {
                newLine();
                continue;
            }
            MarkdownRun head{run.text, run.emphasis};
            while (head.text.size() > 1 && width(head) > m_width)
                head.text.chop(1);
            append(head, width(head));
            run.text.remove(0, head.text.size());
            newLine();
        }
        append(run, width(run));
    }

    void append(const MarkdownRun &run, double runWidth)
    {
        QList<MarkdownPiece> &pieces = m_layout.pieces;
        if (!pieces.isEmpty() && pieces.last().line == m_line
            && pieces.last().run.emphasis == run.emphasis && !isCode(run.emphasis)) {
            pieces.last().run.text += run.text;
            pieces.last().width += runWidth;
        } else {
            pieces.append({run, m_line, m_x, runWidth});
        }
        m_x += runWidth;
    }

    void newLine()
    {
        ++m_line;
        m_x = 0;
        m_spaces = {};
    }

    double width(const MarkdownRun &run) const
    {
        const double text = QFontMetricsF(m_style.font(run.emphasis)).horizontalAdvance(run.text);
        return isCode(run.emphasis) ? text + 2 * m_style.codePadding : text;
    }

    const MarkdownStyle &m_style;
    double m_width;
    double m_x = 0;
    int m_line = 0;
    MarkdownRun m_spaces = {}; ///< Spaces before the next word; dropped at the end of a line.
    MarkdownLayout m_layout = {};
};

void appendPlain(QList<MarkdownRun> &runs, QStringView text)
{
    if (!runs.isEmpty() && runs.last().emphasis == Emphasis::none)
        runs.last().text += text;
    else
        runs.append({text.toString(), Emphasis::none});
}

} // namespace

QList<MarkdownRun> markdownRuns(const QString &text)
{
    const QStringView view(text);
    QList<MarkdownRun> runs;
    qsizetype at = 0;
    while (at < view.size()) {
        qsizetype next = at + 1;
        bool emphasised = false;
        for (const Mark &mark : marks) {
            if (!view.sliced(at).startsWith(mark.text))
                continue;
            const qsizetype start = at + mark.text.size();
            const qsizetype end = view.indexOf(mark.text, start);
            if (end <= start) {
                next = start;
                break;
            }
            runs.append({view.sliced(start, end - start).toString(), mark.emphasis});
            next = end + mark.text.size();
            emphasised = true;
            break;
        }
        if (!emphasised)
            appendPlain(runs, view.sliced(at, next - at));
        at = next;
    }
    return runs;
}

QString plainText(const QString &markdown)
{
    QString text;
    for (const MarkdownRun &run : markdownRuns(markdown))
        text += run.text;
    return text;
}

const QFont &MarkdownStyle::font(Emphasis emphasis) const
{
    switch (emphasis) {
    case Emphasis::bold:
        return bold;
    case Emphasis::italic:
        return italic;
    case Emphasis::code:
        return code;
    case Emphasis::command:
        return command;
    case Emphasis::none:
        break;
    }
    return plain;
}

MarkdownStyle markdownStyle(double pixelSize)
{
    MarkdownStyle style;
    style.plain = Theme::systemFont(pixelSize);
    style.bold = Theme::systemFont(pixelSize, QFont::DemiBold);
    style.italic = Theme::systemFont(pixelSize);
    style.italic.setItalic(true);
    // Monospaced letters look larger. The size is a whole number: many such fonts are hinted at
    // whole sizes only and would be wider at scale 2 than they were measured.
    style.code = Theme::monospacedFont(std::floor(pixelSize * 0.95));
    style.command = Theme::monospacedFont(std::floor(pixelSize * 0.85));
    style.codePadding = 2;
    return style;
}

MarkdownLayout layOut(const QList<MarkdownRun> &runs, const MarkdownStyle &style, double width)
{
    return LineBreaker(style, width).breakUp(tokens(runs));
}

void paintMarkdown(QPainter &painter, const QPointF &topLeft, const MarkdownLayout &layout,
                   const MarkdownStyle &style, const QColor &color)
{
    for (const MarkdownPiece &piece : layout.pieces) {
        const QPointF start = topLeft + QPointF(piece.x, piece.line * style.lineHeight);
        double indent = 0;
        painter.setPen(color);
        if (piece.run.emphasis == Emphasis::bold)
            painter.setPen(Theme::textPrimary);
        if (isCode(piece.run.emphasis)) {
            fillRounded(
                painter,
                QRectF(start.x(), start.y() + style.codeBox.top, piece.width, style.codeBox.height),
                3, Theme::codeFill);
            painter.setPen(Theme::codeText);
            indent = style.codePadding;
        }
        drawText(painter, start + QPointF(indent, style.baseline), piece.run.text,
                 style.font(piece.run.emphasis), Digits::proportional);
    }
}

} // namespace corvane
