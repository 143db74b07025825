#include "ui/Icon.h"

#include "threads/MainThread.h"
#include "ui/PixelGrid.h"
#include "ui/SystemSymbol.h"

#include <QCache>
#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

/// Resources of a static library must be registered by name.
static void registerDrawings()
{
    Q_INIT_RESOURCE(resources);
}

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

enum class Origin { system, drawing };

/// A requested icon; the size is in device pixels.
struct Rendering {
    Origin origin;
    QString symbol;
    SymbolWeight weight;
    QRgb color;
    QSizeF pixels = {};

    bool operator==(const Rendering &) const = default;
};

size_t qHash(const Rendering &rendering, size_t seed)
{
    return qHashMulti(seed, rendering.symbol, static_cast<int>(rendering.weight), rendering.color,
                      rendering.pixels.width(), rendering.pixels.height());
}

/// The drawing from the resources, tinted; empty for an unknown symbol.
QByteArray drawing(const QString &symbol, const QColor &color)
{
    registerDrawings();
    QFile file(u":/icons/%1.svg"_s.arg(symbol));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll().replace("currentColor", color.name(QColor::HexRgb).toLatin1());
}

QImage emptyPicture(const Rendering &wanted, QImage::Format format)
{
    QImage image(qCeil(wanted.pixels.width()), qCeil(wanted.pixels.height()), format);
    image.fill(Qt::transparent);
    return image;
}

/// The system's symbol, tinted; null where it has none.
QImage renderSymbol(const Rendering &wanted)
{
    QImage image = emptyPicture(wanted, QImage::Format_RGBA8888_Premultiplied);
    if (!drawSystemSymbol(wanted.symbol.toStdString(), wanted.weight, image.bits(), image.width(),
                          image.height()))
        return {};
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), QColor::fromRgba(wanted.color));
    return image;
}

QImage renderDrawing(const Rendering &wanted)
{
    const QColor color = QColor::fromRgba(wanted.color);
    QSvgRenderer renderer(drawing(wanted.symbol, color));
    if (!renderer.isValid())
        return {};
    QImage image = emptyPicture(wanted, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(color.alphaF());
    renderer.render(&painter, QRectF({}, wanted.pixels));
    return image;
}

QImage render(const Rendering &wanted)
{
    const QImage symbol = wanted.origin == Origin::system ? renderSymbol(wanted) : QImage();
    return symbol.isNull() ? renderDrawing(wanted) : symbol;
}

/// Parsing and filling a drawing costs a hundred times as much as copying its picture, and a view
/// paints the same few icons at every repaint.
const QImage &picture(const Rendering &wanted)
{
    assertMainThread();
    constexpr int mostPictures = 200;
    static QCache<Rendering, QImage> pictures(mostPictures);
    if (const QImage *found = pictures.object(wanted))
        return *found;
    auto *made = new QImage(render(wanted)); // The cache owns it.
    pictures.insert(wanted, made);
    return *made;
}

/// What is requested of the picture; its size is set here.
void paint(QPainter &painter, Rendering wanted, const QRectF &target)
{
    if (!(target.width() > 0 && target.height() > 0))
        return;
    // The scale of the device is enough: no icon is drawn rotated.
    const QTransform toDevice = painter.deviceTransform();
    wanted.pixels = {target.width() * toDevice.m11(), target.height() * toDevice.m22()};
    const QImage &image = picture(wanted);
    if (image.isNull())
        return;
    const QPointF place = snappedToPixels(painter, target.topLeft());
    const QSizeF size(image.width() / toDevice.m11(), image.height() / toDevice.m22());
    painter.drawImage(QRectF(place, size), image);
}

} // namespace

void paintIcon(QPainter &painter, const QString &symbol, const QRectF &target, const QColor &color,
               SymbolWeight weight)
{
    paint(painter, {Origin::system, symbol, weight, color.rgba()}, target);
}

void paintDrawing(QPainter &painter, const QString &symbol, const QRectF &target,
                  const QColor &color)
{
    paint(painter, {Origin::drawing, symbol, SymbolWeight::medium, color.rgba()}, target);
}

} // namespace corvane
