#pragma once

#include <QColor>
#include <QCoreApplication>
#include <QImage>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QWidget>

#include <functional>

namespace corvane::test {

/// Picture of the widget on a transparent background, at a scale.
inline QImage rendered(QWidget &widget, double scale)
{
    QImage image((QSizeF(widget.size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    widget.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

/// Colour of the pixel at a position in points.
inline QColor pixelAt(const QImage &image, double x, double y)
{
    const double scale = image.devicePixelRatio();
    return image.pixelColor(static_cast<int>(x * scale), static_cast<int>(y * scale));
}

/// Whether two colours are equal within the rounding of blending.
inline bool isClose(const QColor &actual, const QColor &expected, int tolerance = 3)
{
    return std::abs(actual.red() - expected.red()) <= tolerance
        && std::abs(actual.green() - expected.green()) <= tolerance
        && std::abs(actual.blue() - expected.blue()) <= tolerance
        && std::abs(actual.alpha() - expected.alpha()) <= tolerance;
}

/// Whether the upper left corner of a figure in that colour has that radius: on the diagonal of the
/// corner its circle begins at 0.293 radii.
inline bool hasRoundCorner(const QImage &image, const QPointF &corner, double radius,
                           const QColor &color, const QColor &ground = Qt::transparent)
{
    const auto at = [&](double radii) {
        return pixelAt(image, corner.x() + radii * radius, corner.y() + radii * radius);
    };
    return isClose(at(0.26), ground) && isClose(at(0.4), color);
}

/// Picture of a shown window on the screen after all pending repaints.
inline QImage onScreen(QWidget &window)
{
    QCoreApplication::processEvents();
    return window.screen()->grabWindow(window.winId()).toImage();
}

/// Bounding box of the pixels that a repaint of the whole window changes, which earlier repaints of
/// parts should have painted; null if there are none.
inline QRect stalePixels(QWidget &window)
{
    const QImage painted = onScreen(window);
    window.repaint();
    const QImage repainted = onScreen(window);
    QRect different;
    for (int y = 0; y < repainted.height(); ++y) {
        for (int x = 0; x < repainted.width(); ++x) {
            if (painted.pixel(x, y) != repainted.pixel(x, y))
                different |= QRect(x, y, 1, 1);
        }
    }
    return different;
}

/// The same after `change`; the whole window if that changes no pixel.
inline QRect stalePixelsAfter(const std::function<void()> &change, QWidget &window)
{
    const QImage before = onScreen(window);
    change();
    return onScreen(window) != before ? stalePixels(window) : window.rect();
}

/// Collects the regions of a widget that are repainted from now on.
class PaintWatch : public QObject {
public:
    explicit PaintWatch(QWidget &widget) { widget.installEventFilter(this); }

    const QRegion &region() const { return m_region; }
    void clear() { m_region = {}; }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            m_region += static_cast<QPaintEvent *>(event)->region();
        return false;
    }

private:
    QRegion m_region;
};

} // namespace corvane::test
