#include "packaging/macos/AppIcon.h"

#include "controls/Logo.h"
#include "ui/Theme.h"

#include <QPainter>

namespace corvane {

QImage appIcon(int pixels)
{
    // The body of the system's icons is 824 of 1024. Whole pixels keep small sizes sharp.
    const int margin = 100 * pixels / 1024;
    const QRectF body = QRectF(0, 0, pixels, pixels).adjusted(margin, margin, -margin, -margin);

    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::windowGradient(image.size()));
    const double radius = body.width() * largeLogoRadius;
    painter.drawRoundedRect(body, radius, radius);
    paintLogo(painter, body, LogoSize::large);
    return image;
}

} // namespace corvane
