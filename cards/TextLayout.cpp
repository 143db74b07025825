#include "cards/TextLayout.h"

#include <QFontMetricsF>
#include <QHash>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace corvane {

namespace {

/// Advances of the ten digits of one font.
struct DigitMetrics {
    std::array<double, 10> advances = {};
    double widest = 0;
    bool alike = true; ///< The font's own digits are of one width.
};

const DigitMetrics &digitMetrics(const QFont &font)
{
    static QHash<QFont, DigitMetrics> known;
    const auto found = known.constFind(font);
    if (found != known.constEnd())
        return *found;

    const QFontMetricsF metrics(font);
    DigitMetrics digits;
    for (std::size_t digit = 0; digit < digits.advances.size(); ++digit)
        digits.advances[digit] =
            metrics.horizontalAdvance(QChar(u'0' + static_cast<char16_t>(digit)));
    const auto [narrowest, widest] = std::ranges::minmax(digits.advances);
    digits.widest = widest;
    digits.alike = widest - narrowest < 0.01;
    return *known.insert(font, digits);
}

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

/// Calls `visit(piece, width, indent)` for every digit and for every run between digits.
template <typename Visitor>
void forEachPiece(const QString &text, const QFont &font, const DigitMetrics &digits, Visitor visit)
{
    const QFontMetricsF metrics(font);
    qsizetype start = 0;
    while (start < text.size()) {
        if (isDigit(text[start])) {
            const double advance =
                digits.advances[static_cast<std::size_t>(text[start].digitValue())];
            visit(text.mid(start, 1), digits.widest, (digits.widest - advance) / 2);
            ++start;
            continue;
        }
        qsizetype end = start;
        while (end < text.size() && !isDigit(text[end]))
            ++end;
        const QString run = text.mid(start, end - start);
        visit(run, metrics.horizontalAdvance(run), 0.0);
        start = end;
    }
}

/// Sets text at the size that it has on the device. A font that the painter enlarges is hinted at
/// its small size first, which thickens every stem.
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
    /// The device's pixels a point, where they are a whole number; fonts have whole pixel sizes.
    static int wholeRatio(const QPainter &painter)
    {
        const double ratio = painter.device()->devicePixelRatioF();
        return ratio == std::floor(ratio) ? static_cast<int>(ratio) : 1;
    }

    QPainter &m_painter;
    int m_ratio;
};

bool setDigitByDigit(const QString &text, const QFont &font, Digits digits)
{
    return digits == Digits::fixedWidth && std::ranges::any_of(text, isDigit)
        && !digitMetrics(font).alike;
}

} // namespace

double TextLine::baseline(const QFont &font) const
{
    const QFontMetricsF metrics(font);
    return top + (height + metrics.ascent() - metrics.descent()) / 2;
}

double textWidth(const QString &text, const QFont &font, Digits digits)
{
    if (!setDigitByDigit(text, font, digits))
        return QFontMetricsF(font).horizontalAdvance(text);
    double width = 0;
    forEachPiece(text, font, digitMetrics(font),
                 [&width](const QString &, double pieceWidth, double) { width += pieceWidth; });
    return width;
}

void drawText(QPainter &painter, const QPointF &baseline, const QString &text, const QFont &font,
              Digits digits)
{
    const DeviceText device(painter, font);
    if (!setDigitByDigit(text, font, digits)) {
        device.draw(baseline, text);
        return;
    }
    double x = baseline.x();
    forEachPiece(text, font, digitMetrics(font),
                 [&](const QString &piece, double width, double indent) {
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

QString singleLine(const QString &text)
{
    constexpr qsizetype mostCharacters = 512; // No view has room for more; shaping more costs time.
    QString line = text.left(mostCharacters);
    for (QChar &character : line) {
        const QChar::Category category = character.category();
        if (category == QChar::Other_Control || category == QChar::Other_Format
            || category == QChar::Separator_Line || category == QChar::Separator_Paragraph)
            character = QChar(0xFFFD);
    }
    return line;
}

} // namespace corvane
