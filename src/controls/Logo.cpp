#include "controls/Logo.h"

#include "threads/MainThread.h"
#include "ui/Icon.h"
#include "ui/RoundedBox.h"
#include "ui/Theme.h"

#include <QImage>
#include <QPainter>

namespace corvane {

using namespace Qt::StringLiterals;

namespace {

/// Measures of a logo that is `side` wide.
struct Drawing {
    double side;
    double plateRadius;
    double glyphInset;
};

constexpr Drawing drawing(LogoSize size)
{
    return size == LogoSize::small ? Drawing{28, 8, 5.5} : Drawing{72, 72 * largeLogoRadius, 13};
}

} // namespace

void paintLogo(QPainter &painter, const QRectF &square, LogoSize size)
{
    assertMainThread();
    constexpr double opacity = 0.7;
    const auto [side, plateRadius, glyphInset] = drawing(size);
    const double scale = square.width() / side;
    const double inset = glyphInset * scale;

    QLinearGradient gradient(square.topLeft(), square.bottomRight());
    gradient.setColorAt(0, Theme::withOpacity(Theme::cpu, opacity));
    gradient.setColorAt(1, Theme::withOpacity(Theme::gpu, opacity));
    fillRounded(painter, square, plateRadius * scale, gradient);
    const QRectF glyph = square.adjusted(inset, inset, -inset, -inset);
    const QString symbol = u"waveform.path.ecg"_s;
    if (size == LogoSize::small)
        paintIcon(painter, symbol, glyph, Qt::white, SymbolWeight::bold);
    else
        paintDrawing(painter, symbol, glyph, Qt::white); // A program's icon may show no symbol.
}

QImage signPicture(int pixels)
{
    QImage picture(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    paintLogo(painter, QRectF(0, 0, pixels, pixels));
    return picture;
}

} // namespace corvane
