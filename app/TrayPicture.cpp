#include "app/TrayPicture.h"

#include "cards/TextLayout.h"
#include "cards/Theme.h"

#include <QFontMetricsF>
#include <QPainter>

namespace corvane {

namespace {

/// The square's own grid; every length below is in its units.
constexpr double side = 22;
constexpr double plateRadius = 5;
constexpr double borderWidth = 1;
constexpr double numberSize = 13; ///< Or less, as the number needs.
constexpr double numberRoom = 20;
constexpr double numberMiddle = 9.6;
constexpr QSizeF markSize(4, 2);
constexpr double markTop = 17;

double markLeft(LabelPosition position)
{
    switch (position) {
    case LabelPosition::left:
        return 4;
    case LabelPosition::middle:
        return 9;
    case LabelPosition::right:
        break;
    }
    return 14;
}

void paintPlate(QPainter &painter)
{
    const double inset = borderWidth / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::plate());
    painter.drawRoundedRect(QRectF(0, 0, side, side), plateRadius, plateRadius);
    painter.setPen(QPen(Theme::plateStroke(), borderWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(inset, inset, side - borderWidth, side - borderWidth),
                            plateRadius - inset, plateRadius - inset);
}

/// Set at the pixel size that it is shown in, so that the font's own hinting applies.
void paintNumber(QPainter &painter, const LabelNumber &number, double scale)
{
    QFont font = Theme::systemFont(1, QFont::Bold);
    font.setPixelSize(qRound(numberSize * scale));
    const double width = textWidth(number.text, font, Digits::proportional);
    if (width > numberRoom * scale)
        font.setPixelSize(static_cast<int>(font.pixelSize() * numberRoom * scale / width));

    const double left = (side * scale - textWidth(number.text, font, Digits::proportional)) / 2;
    const double baseline = numberMiddle * scale + QFontMetricsF(font).capHeight() / 2;
    painter.setPen(number.color);
    drawText(painter, QPointF(left, baseline), number.text, font, Digits::proportional);
}

void paintMark(QPainter &painter, const QColor &color, LabelPosition position)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(QRectF(QPointF(markLeft(position), markTop), markSize), 1, 1);
}

} // namespace

QImage trayPicture(const LabelNumber &number, LabelPosition position, int pixels)
{
    QImage picture(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const double scale = pixels / side;

    painter.scale(scale, scale);
    paintPlate(painter);
    paintMark(painter, number.color, position);
    painter.resetTransform();
    paintNumber(painter, number, scale);
    return picture;
}

QIcon trayIcon(const LabelNumber &number, LabelPosition position)
{
    QIcon icon;
    for (const int pixels : {16, 22, 24, 32, 44, 48, 64})
        icon.addPixmap(QPixmap::fromImage(trayPicture(number, position, pixels)));
    return icon;
}

} // namespace corvane
