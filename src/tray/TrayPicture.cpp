#include "tray/TrayPicture.h"

#include "ui/RoundedBox.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numeric>
#include <tuple>
#include <vector>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// The square is designed on a grid of 22 units a side; the lengths below are in these units.
constexpr double side = 22;
constexpr double plateRadius = 5;
constexpr double borderWidth = 1;
constexpr double numberSize = 13; ///< Smaller where the number would be too wide.
constexpr double numberRoom = 20;
constexpr double numberMiddle = 9.6; ///< Above the centre, since the mark stands below it.
constexpr double markTop = 17;
constexpr double markHeight = 2;
constexpr double markStart = 4; ///< Left end of the first item's mark.
constexpr double markEnd = 18;  ///< Right end of the last item's.

/// The marks of one to three items are 4 wide; more would run into one another.
QRectF markOf(const LabelPosition &position)
{
    const double width = position.count > 3 ? 3 : 4;
    const double share = position.count > 1
        ? static_cast<double>(position.index) / static_cast<double>(position.count - 1)
        : 0;
    return {markStart + share * (markEnd - width - markStart), markTop, width, markHeight};
}

/// From 100 W on the unit is left out, which would make the digits too small to read.
QString squareText(const QString &text)
{
    const bool hasThreeDigits = text.size() > 3;
    return hasThreeDigits && text.endsWith(u'W') ? text.chopped(1) : text;
}

/// Set in the font's pixel size rather than scaled, so that the font's hinting applies.
void paintNumber(QPainter &painter, const LabelNumber &number, double scale)
{
    const QString text = squareText(number.text);
    QFont font = Theme::systemFont(1, QFont::Bold);
    font.setPixelSize(qRound(numberSize * scale));
    const double width = textWidth(text, font, Digits::proportional);
    if (width > numberRoom * scale)
        font.setPixelSize(static_cast<int>(font.pixelSize() * numberRoom * scale / width));

    const double left = (side * scale - textWidth(text, font, Digits::proportional)) / 2;
    const double baseline = numberMiddle * scale + QFontMetricsF(font).capHeight() / 2;
    painter.setPen(number.color);
    drawText(painter, QPointF(left, baseline), text, font, Digits::proportional);
}

QImage emptyPicture(int width, int height)
{
    QImage picture(width, height, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    return picture;
}

/// A square without its number. Plate and mark never change, so each is painted once and cached.
QImage emptySquare(LabelPosition position, const QColor &color, int pixels)
{
    static std::map<std::tuple<std::size_t, std::size_t, QRgb, int>, QImage> squares;
    QImage &square = squares[{position.index, position.count, color.rgba(), pixels}];
    if (!square.isNull())
        return square;
    square = emptyPicture(pixels, pixels);
    QPainter painter(&square);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixels / side, pixels / side);
    const QRectF plate(0, 0, side, side);
    fillRounded(painter, plate, plateRadius, Theme::plate);
    strokeRounded(painter, plate, plateRadius, Theme::plateStroke, borderWidth);
    fillRounded(painter, markOf(position), 1, color);
    return square;
}

/// Lengths of the wide picture, in units of an 18th of its height.
constexpr double wideHeight = 18;
constexpr double widePadding = 6;
constexpr double wideGap = 5;
constexpr double wideNumberSize = 11;

/// Room for two digits, and for the unit of watts.
double leastWidth(const LabelNumber &number, const QFont &font)
{
    return textWidth(number.text.endsWith(u'W') ? u"00W"_s : u"00"_s, font);
}

} // namespace

QImage trayPicture(const LabelNumber &number, LabelPosition position, int pixels)
{
    QImage picture = emptySquare(position, number.color, pixels);
    QPainter painter(&picture);
    paintNumber(painter, number, pixels / side);
    return picture;
}

QIcon trayIcon(const LabelNumber &number, LabelPosition position)
{
    QIcon icon;
    for (const int pixels : trayPictureSizes())
        icon.addPixmap(QPixmap::fromImage(trayPicture(number, position, pixels)));
    return icon;
}

std::span<const int> trayPictureSizes(double devicePixelRatio)
{
    static constexpr std::array usual{16, 22, 24, 32, 48};
    static constexpr std::array all{16, 22, 24, 32, 44, 48, 64}; // With the doubles of 22 and 32.
    return devicePixelRatio > 1 ? std::span<const int>(all) : std::span<const int>(usual);
}

QImage widePicture(const LabelNumbers &numbers, int pixels)
{
    const double scale = pixels / wideHeight;
    QFont font = Theme::systemFont(1, QFont::DemiBold);
    font.setPixelSize(qRound(wideNumberSize * scale));
    std::vector<double> widths;
    for (const LabelNumber &number : numbers)
        widths.push_back(std::max(leastWidth(number, font), textWidth(number.text, font)));
    const double gaps = wideGap * static_cast<double>(numbers.size() - 1);
    const double width =
        std::accumulate(widths.begin(), widths.end(), (2 * widePadding + gaps) * scale);

    QImage picture = emptyPicture(static_cast<int>(std::ceil(width)), pixels);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    // Without an outline, so that a dark bar hides the plate.
    fillRounded(painter, {0, 0, picture.width() / scale, wideHeight}, plateRadius, Theme::plate);
    painter.resetTransform();

    const double baseline = (pixels + QFontMetricsF(font).capHeight()) / 2;
    double right = widePadding * scale;
    for (std::size_t index = 0; index < numbers.size(); ++index) {
        right += widths[index];
        painter.setPen(numbers[index].color);
        drawTextRight(painter, QPointF(right, baseline), numbers[index].text, font);
        right += wideGap * scale;
    }
    return picture;
}

} // namespace corvane
