#include "controls/WindowBackground.h"

#include "ui/Theme.h"

#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace corvane {

namespace {

constexpr int shift = 20; ///< Binary places of a channel, a fixed-point number.
constexpr int lanes = 8;  ///< Pixels that are computed together.

/// Thresholds of an ordered dither, as such fixed-point numbers; each occurs equally often.
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

/// One colour channel: its value in the upper left corner and its change from pixel to pixel.
struct Channel {
    int origin = 0;
    int right = 0;
    int down = 0;

    int at(int x, int y) const { return origin + x * right + y * down; }
};

Channel channel(double first, double last, const QSize &window)
{
    const double width = window.width();
    const double height = window.height();
    const double length = std::max(width * width + height * height, 1.0);
    const auto fixed = [](double value) {
        return static_cast<int>(std::lround(value * 255 * (1 << shift)));
    };
    return {.origin = fixed(first),
            .right = fixed((last - first) * width / length),
            .down = fixed((last - first) * height / length)};
}

/// The background of a whole window.
class Background {
public:
    explicit Background(const QSize &window)
    {
        const QGradientStops stops = Theme::windowGradient(window).stops();
        const QColor from = stops.first().second;
        const QColor to = stops.last().second;
        m_red = channel(from.redF(), to.redF(), window);
        m_green = channel(from.greenF(), to.greenF(), window);
        m_blue = channel(from.blueF(), to.blueF(), window);
    }

    /// `pixels` has room for whole lanes.
    void paintRow(QRgb *pixels, int width, int x, int y) const
    {
        using Lanes = std::array<int, lanes>;
        Lanes red = {};
        Lanes green = {};
        Lanes blue = {};
        for (unsigned i = 0; i < lanes; ++i) {
            const int column = x + static_cast<int>(i);
            const int threshold = dither[unsigned(y) % 8][unsigned(column) % 8];
            red[i] = m_red.at(column, y) + threshold;
            green[i] = m_green.at(column, y) + threshold;
            blue[i] = m_blue.at(column, y) + threshold;
        }
        // Local, so that the compiler sees that the pixels cannot change them.
        const int redStep = lanes * m_red.right;
        const int greenStep = lanes * m_green.right;
        const int blueStep = lanes * m_blue.right;
        for (QRgb *const end = pixels + width; pixels < end; pixels += lanes) {
            for (unsigned i = 0; i < lanes; ++i) {
                pixels[i] = qRgb(red[i] >> shift, green[i] >> shift, blue[i] >> shift);
                red[i] += redStep;
                green[i] += greenStep;
                blue[i] += blueStep;
            }
        }
    }

private:
    Channel m_red;
    Channel m_green;
    Channel m_blue;
};

/// A part of the background as an image that refers to `pixels`.
QImage rowsOf(const Background &background, const QRect &part, std::vector<QRgb> &pixels)
{
    const int stride = (part.width() + lanes - 1) / lanes * lanes;
    pixels.resize(static_cast<std::size_t>(stride) * static_cast<std::size_t>(part.height()));
    for (int row = 0; row < part.height(); ++row)
        background.paintRow(pixels.data() + std::ptrdiff_t(row) * stride, part.width(), part.left(),
                            part.top() + row);
    return QImage(reinterpret_cast<const uchar *>(pixels.data()), part.width(), part.height(),
                  stride * qsizetype(sizeof(QRgb)), QImage::Format_RGB32);
}

} // namespace

QImage windowBackground(const QSize &window, const QRect &part)
{
    std::vector<QRgb> pixels;
    return rowsOf(Background(window), part, pixels).copy();
}

void paintWindowBackground(QPainter &painter, const QWidget &widget, const QRegion &region)
{
    constexpr int mostPixels = 1 << 14; // Computed at once: they stay in the processor's cache.
    const double scale = painter.deviceTransform().m11();
    const QWidget *window = widget.window();
    const QPoint origin = widget.mapTo(window, QPoint(0, 0));
    const QSize size = (QSizeF(window->size()) * scale).toSize();
    const Background background(size);
    std::vector<QRgb> pixels;
    for (const QRect &rect : region) {
        const QRectF inWindow(rect.translated(origin));
        const QRect part = QRectF(inWindow.topLeft() * scale, inWindow.size() * scale)
                               .toAlignedRect()
                               .intersected({{}, size});
        // Qt copies a picture at once through a rectangular clip, but line by line on its threads
        // through any other clip, such as the region to repaint.
        painter.setClipRect(rect);
        const int most = std::max(mostPixels / std::max(part.width(), 1), 1);
        for (int top = part.top(); top <= part.bottom(); top += most) {
            const QRect rows(part.left(), top, part.width(),
                             std::min(most, part.bottom() + 1 - top));
            QImage image = rowsOf(background, rows, pixels);
            image.setDevicePixelRatio(scale);
            painter.drawImage(QPointF(rows.topLeft()) / scale - origin, image);
        }
    }
    painter.setClipping(false);
}

} // namespace corvane
