#include "cards/Logo.h"

#include "cards/Icon.h"
#include "cards/RoundedBox.h"
#include "cards/Theme.h"

#include <QPainter>

namespace corvane {

using namespace Qt::StringLiterals;

namespace {

/// A drawing of the sign, on a grid of its own.
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
    constexpr double opacity = 0.7;
    const auto [side, plateRadius, glyphInset] = drawing(size);
    const double scale = square.width() / side;
    const double inset = glyphInset * scale;

    QLinearGradient gradient(square.topLeft(), square.bottomRight());
    gradient.setColorAt(0, Theme::withOpacity(Theme::cpu(), opacity));
    gradient.setColorAt(1, Theme::withOpacity(Theme::gpu(), opacity));
    fillRounded(painter, square, plateRadius * scale, gradient);
    paintDrawing(painter, u"waveform.path.ecg"_s, square.adjusted(inset, inset, -inset, -inset),
                 Qt::white);
}

} // namespace corvane
