#include "cards/Logo.h"

#include "cards/Icon.h"
#include "cards/Theme.h"

#include <QPainter>

namespace corvane {

using namespace Qt::StringLiterals;

void paintLogo(QPainter &painter, const QRectF &square)
{
    // The drawing's own grid.
    constexpr double side = 28;
    constexpr double glyphInset = 5.5;
    constexpr double opacity = 0.7;
    const double scale = square.width() / side;
    const double inset = glyphInset * scale;

    QLinearGradient gradient(square.topLeft(), square.bottomRight());
    gradient.setColorAt(0, Theme::withOpacity(Theme::cpu(), opacity));
    gradient.setColorAt(1, Theme::withOpacity(Theme::gpu(), opacity));
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawRoundedRect(square, logoRadius * square.width(), logoRadius * square.width());
    paintIcon(painter, u"waveform.path.ecg"_s, square.adjusted(inset, inset, -inset, -inset),
              Qt::white);
}

} // namespace corvane
