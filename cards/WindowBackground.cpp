#include "cards/WindowBackground.h"

#include "cards/Theme.h"

#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <array>
#include <cmath>

namespace corvane {

namespace {

constexpr int shift = 16; ///< Channels are fixed-point numbers with so many binary places.

/// Thresholds of an ordered dither, each as often as any other, as such numbers.
constexpr std::array<std::array<int, 8>, 8> thresholds()
{
    std::array<std::array<int, 8>, 8> table = {};
    for (unsigned y = 0; y < 8; ++y) {
        for (unsigned x = 0; x < 8; ++x) {
            unsigned rank = 0;
            for (unsigned bit = 0; bit < 3; ++bit) {
                const unsigned column = (x >> bit) & 1;
                const unsigned row = (y >> bit) & 1;
                rank |= ((column ^ row) << 1 | row) << (2 * (2 - bit));
            }
            table[y][x] = static_cast<int>((2 * rank + 1) << (shift - 7));
        }
    }
    return table;
}

constexpr std::array<std::array<int, 8>, 8> dither = thresholds();

/// One colour channel along the gradient.
struct Channel {
    double first = 0;
    double last = 0;

    int at(double position) const
    {
        const double value = first + (last - first) * std::clamp(position, 0.0, 1.0);
        return static_cast<int>(std::lround(value * 255 * (1 << shift)));
    }
};

} // namespace

QImage windowBackground(const QSize &window, const QRect &part)
{
    const QGradientStops stops = Theme::windowGradient(window).stops();
    const QColor from = stops.first().second;
    const QColor to = stops.last().second;
    const std::array<Channel, 3> channels{Channel{from.redF(), to.redF()},
                                          Channel{from.greenF(), to.greenF()},
                                          Channel{from.blueF(), to.blueF()}};
    const double width = window.width();
    const double height = window.height();
    const double length = width * width + height * height;

    QImage image(part.size(), QImage::Format_RGB32);
    for (int row = 0; row < part.height(); ++row) {
        const int y = part.top() + row;
        const double start = (part.left() * width + y * height) / length;
        const double end = start + part.width() * width / length;
        std::array<int, 3> value = {};
        std::array<int, 3> step = {};
        for (std::size_t i = 0; i < channels.size(); ++i) {
            value[i] = channels[i].at(start);
            step[i] = (channels[i].at(end) - value[i]) / std::max(part.width(), 1);
        }
        const std::array<int, 8> &line = dither[static_cast<std::size_t>(y & 7)];
        auto *pixels = reinterpret_cast<QRgb *>(image.scanLine(row));
        for (int column = 0; column < part.width(); ++column) {
            const int threshold = line[static_cast<std::size_t>((part.left() + column) & 7)];
            pixels[column] = qRgb((value[0] + threshold) >> shift, (value[1] + threshold) >> shift,
                                  (value[2] + threshold) >> shift);
            for (std::size_t i = 0; i < value.size(); ++i)
                value[i] += step[i];
        }
    }
    return image;
}

void paintWindowBackground(QPainter &painter, const QWidget &widget, const QRect &part)
{
    const double scale = painter.deviceTransform().m11();
    const QWidget *window = widget.window();
    const QPoint origin = widget.mapTo(window, QPoint(0, 0));
    const QRectF inWindow(part.translated(origin));
    const QRect pixels =
        QRectF(inWindow.topLeft() * scale, inWindow.size() * scale).toAlignedRect();
    QImage image = windowBackground((QSizeF(window->size()) * scale).toSize(), pixels);
    image.setDevicePixelRatio(scale);
    painter.drawImage(QPointF(pixels.topLeft()) / scale - origin, image);
}

} // namespace corvane
