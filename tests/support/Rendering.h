#pragma once

#include <QColor>
#include <QImage>
#include <QPaintEvent>
#include <QPainter>
#include <QWidget>

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
