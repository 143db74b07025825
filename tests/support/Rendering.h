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

/// The widget alone, on a transparent ground, at a scale.
inline QImage rendered(QWidget &widget, double scale)
{
    QImage image((QSizeF(widget.size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    widget.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

/// The pixel at a place given in points.
inline QColor pixelAt(const QImage &image, double x, double y)
{
    const double scale = image.devicePixelRatio();
    return image.pixelColor(static_cast<int>(x * scale), static_cast<int>(y * scale));
}

/// Whether two colours are equal but for what rounding in blending explains.
inline bool isClose(const QColor &actual, const QColor &expected, int tolerance = 3)
{
    return std::abs(actual.red() - expected.red()) <= tolerance
        && std::abs(actual.green() - expected.green()) <= tolerance
        && std::abs(actual.blue() - expected.blue()) <= tolerance
        && std::abs(actual.alpha() - expected.alpha()) <= tolerance;
}

/// What stands on the screen of a shown window when all that was asked for has been painted.
inline QImage onScreen(QWidget &window)
{
    QCoreApplication::processEvents();
    return window.screen()->grabWindow(window.winId()).toImage();
}

/// Around where the screen, painted in parts so far, is not what a fresh painting of all makes of
/// it; null: nowhere.
inline QRect leftBehind(QWidget &window)
{
    const QImage parts = onScreen(window);
    window.repaint();
    const QImage fresh = onScreen(window);
    QRect different;
    for (int y = 0; y < fresh.height(); ++y) {
        for (int x = 0; x < fresh.width(); ++x) {
            if (parts.pixel(x, y) != fresh.pixel(x, y))
                different |= QRect(x, y, 1, 1);
        }
    }
    return different;
}

/// The same after a change, which has to show; all of the window where it does not.
inline QRect leftBehindBy(const std::function<void()> &change, QWidget &window)
{
    const QImage before = onScreen(window);
    change();
    return onScreen(window) != before ? leftBehind(window) : window.rect();
}

/// Collects what is repainted of a widget from now on.
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
