#include "cards/Icon.h"

#include "cards/PixelGrid.h"

#include <QCache>
#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

/// The drawings lie in a static library, whose resources must be asked for by name.
static void registerDrawings()
{
    Q_INIT_RESOURCE(resources);
}

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// One icon as it was asked for; the size is in device pixels.
struct Rendering {
    QString symbol;
    QRgb color;
    QSizeF pixels;

    bool operator==(const Rendering &) const = default;
};

size_t qHash(const Rendering &rendering, size_t seed)
{
    return qHashMulti(seed, rendering.symbol, rendering.color, rendering.pixels.width(),
                      rendering.pixels.height());
}

/// The drawing as it lies in the resources, tinted; empty for an unknown symbol.
QByteArray drawing(const QString &symbol, const QColor &color)
{
    registerDrawings();
    QFile file(u":/icons/%1.svg"_s.arg(symbol));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll().replace("currentColor", color.name(QColor::HexRgb).toLatin1());
}

QImage render(const Rendering &wanted)
{
    const QColor color = QColor::fromRgba(wanted.color);
    QSvgRenderer renderer(drawing(wanted.symbol, color));
    if (!renderer.isValid())
        return {};
    QImage image(qCeil(wanted.pixels.width()), qCeil(wanted.pixels.height()),
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(color.alphaF());
    renderer.render(&painter, QRectF({}, wanted.pixels));
    return image;
}

/// Parsing and filling a drawing costs a hundred times what copying its picture does, and the few
/// icons of a view come back at every repaint.
const QImage &picture(const Rendering &wanted)
{
    constexpr int mostPictures = 200;
    static QCache<Rendering, QImage> pictures(mostPictures);
    if (const QImage *found = pictures.object(wanted))
        return *found;
    auto *made = new QImage(render(wanted)); // The cache owns it.
    pictures.insert(wanted, made);
    return *made;
}

} // namespace

void paintIcon(QPainter &painter, const QString &symbol, const QRectF &target, const QColor &color)
{
    if (!(target.width() > 0 && target.height() > 0))
        return;
    // The device's scale; no icon is drawn rotated.
    const QTransform toDevice = painter.deviceTransform();
    const QSizeF pixels(target.width() * toDevice.m11(), target.height() * toDevice.m22());
    const QImage &image = picture({symbol, color.rgba(), pixels});
    if (image.isNull())
        return;
    const QPointF origin = snappedToPixels(painter, target.topLeft());
    const QSizeF size(image.width() / toDevice.m11(), image.height() / toDevice.m22());
    painter.drawImage(QRectF(origin, size), image);
}

} // namespace corvane
