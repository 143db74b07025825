#include "ui/TextLayout.h"

#include "threads/MainThread.h"

#include <QFontMetricsF>
#include <QHash>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace corvane {

namespace {

/// Remembers advances in one font. Shaping a text costs a hundred times as much as finding its
/// width here, and a view measures the same few words at every change of its numbers.
class FontAdvances {
public:
    explicit FontAdvances(const QFont &font)
        : m_metrics(font),
          m_fineMetrics(enlarged(font)),
          m_ratio(static_cast<double>(font.pixelSize()) / finePixels),
          m_spacing(font.letterSpacingType() == QFont::AbsoluteSpacing ? font.letterSpacing() : 0)
    {
        for (std::size_t digit = 0; digit < digits.size(); ++digit)
            digits[digit] = measured(QChar(u'0' + static_cast<char16_t>(digit)));
        const auto [narrowest, most] = std::ranges::minmax(digits);
        widest = most;
        alike = most - narrowest < 0.01;
    }

    double advance(const QString &text)
    {
        constexpr qsizetype mostTexts = 300;
        const auto found = m_known.constFind(text);
        if (found != m_known.constEnd())
            return *found;
        if (m_known.size() >= mostTexts)
            m_known.clear();
        return *m_known.insert(text, measured(text));
    }

    std::array<double, 10> digits = {};
    double widest = 0;
    bool alike = true; ///< All digits of the font have the same width.

private:
    /// Qt rounds the advance of each glyph to a 64th of a point, which adds up in a row of texts.
    /// One size for all fonts of a family and weight, so that these share an engine.
    static constexpr int finePixels = 512;

    static QFont enlarged(QFont font)
    {
        font.setPixelSize(finePixels);
        font.setLetterSpacing(QFont::AbsoluteSpacing, 0);
        return font;
    }

    /// The sum of the advances without their roundings.
    double measured(const QString &text) const
    {
        constexpr double roundings = 2 / 64.0; // Of a glyph and its spacing.
        const auto count = static_cast<double>(text.size());
        const double own = m_metrics.horizontalAdvance(text);
        const double fine = m_fineMetrics.horizontalAdvance(text) * m_ratio + count * m_spacing;
        // What differs more is hinted, and is painted as wide as it is measured at its own size.
        return std::abs(fine - own) <= count * roundings ? fine : own;
    }

    QFontMetricsF m_metrics;
    QFontMetricsF m_fineMetrics;
    double m_ratio;   ///< Of a point to a pixel of the fine metrics.
    double m_spacing; ///< Between letters, in points.
    QHash<QString, double> m_known = {};
};

FontAdvances &advancesOf(const QFont &font)
{
    assertMainThread();
    static QHash<QFont, FontAdvances> known;
    const auto found = known.find(font);
    return found != known.end() ? *found : *known.insert(font, FontAdvances(font));
}

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

/// Calls `visit(piece, width, indent)` for every digit and for every run between digits.
template <typename Visitor>
void forEachPiece(const QString &text, FontAdvances &font, Visitor visit)
{
    qsizetype start = 0;
    while (start < text.size()) {
        if (isDigit(text[start])) {
            const double advance = font.digits[static_cast<std::size_t>(text[start].digitValue())];
            visit(text.mid(start, 1), font.widest, (font.widest - advance) / 2);
            ++start;
            continue;
        }
        qsizetype end = start;
        while (end < text.size() && !isDigit(text[end]))
            ++end;
        const QString run = text.mid(start, end - start);
        visit(run, font.advance(run), 0.0);
        start = end;
    }
}

/// Draws text at its size on the device. A font that the painter enlarges is hinted at its small
/// size, which thickens every stem.
class DeviceText {
public:
    DeviceText(QPainter &painter, const QFont &font)
        : m_painter(painter),
          m_ratio(wholeRatio(painter))
    {
        if (m_ratio == 1) {
            painter.setFont(font);
            return;
        }
        QFont large = font;
        large.setPixelSize(font.pixelSize() * m_ratio);
        if (font.letterSpacingType() == QFont::AbsoluteSpacing)
            large.setLetterSpacing(QFont::AbsoluteSpacing, font.letterSpacing() * m_ratio);
        painter.save();
        painter.setFont(large);
        painter.scale(1.0 / m_ratio, 1.0 / m_ratio);
    }

    ~DeviceText()
    {
        if (m_ratio != 1)
            m_painter.restore();
    }

    DeviceText(const DeviceText &) = delete;
    DeviceText &operator=(const DeviceText &) = delete;

    void draw(const QPointF &baseline, const QString &text) const
    {
        m_painter.drawText(baseline * m_ratio, text);
    }

private:
    /// Device pixels in a point, if they are a whole number; else 1, as font sizes are whole
    /// pixels.
    static int wholeRatio(const QPainter &painter)
    {
        const double ratio = painter.device()->devicePixelRatioF();
        return ratio == std::floor(ratio) ? static_cast<int>(ratio) : 1;
    }

    QPainter &m_painter;
    int m_ratio;
};

bool setDigitByDigit(const QString &text, const FontAdvances &font, Digits digits)
{
    return digits == Digits::fixedWidth && !font.alike && std::ranges::any_of(text, isDigit);
}

} // namespace

double TextLine::baseline(const QFont &font) const
{
    const QFontMetricsF metrics(font);
    return top + (height + metrics.ascent() - metrics.descent()) / 2;
}

double textWidth(const QString &text, const QFont &font, Digits digits)
{
    FontAdvances &advances = advancesOf(font);
    if (!setDigitByDigit(text, advances, digits))
        return advances.advance(text);
    double width = 0;
    forEachPiece(text, advances,
                 [&width](const QString &, double pieceWidth, double) { width += pieceWidth; });
    return width;
}

void drawText(QPainter &painter, const QPointF &baseline, const QString &text, const QFont &font,
              Digits digits)
{
    const DeviceText device(painter, font);
    FontAdvances &advances = advancesOf(font);
    if (!setDigitByDigit(text, advances, digits)) {
        device.draw(baseline, text);
        return;
    }
    double x = baseline.x();
    forEachPiece(text, advances, [&](const QString &piece, double width, double indent) {
        device.draw(QPointF(x + indent, baseline.y()), piece);
        x += width;
    });
}

void drawTextRight(QPainter &painter, const QPointF &baselineEnd, const QString &text,
                   const QFont &font, Digits digits)
{
    drawText(painter, baselineEnd - QPointF(textWidth(text, font, digits), 0), text, font, digits);
}

QString elided(const QString &text, const QFont &font, double width)
{
    return QFontMetricsF(font).elidedText(text, Qt::ElideRight, width);
}

namespace {

/// Whether a character takes its place in a line. Others are invisible or reorder the line; half of
/// a pair is none.
bool isShowable(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    default:
        return true;
    }
}

} // namespace

QString singleLine(const QString &text)
{
    constexpr qsizetype mostCharacters = 512; // No view has room for more; shaping more costs time.
    auto characters = text.left(mostCharacters).toUcs4();
    for (auto &character : characters) {
        if (!isShowable(character))
            character = QChar::ReplacementCharacter;
    }
    return QString::fromUcs4(reinterpret_cast<const char32_t *>(characters.constData()),
                             characters.size());
}

QString plainToolTip(const QString &text)
{
    using namespace Qt::StringLiterals;
    if (text.isEmpty())
        return {};
    return u"<p style=\"white-space:pre-wrap\">%1</p>"_s.arg(text.toHtmlEscaped());
}

} // namespace corvane
