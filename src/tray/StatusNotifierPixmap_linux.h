#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>

namespace corvane {

/// A picture in the trays' format, (iiay): rows from top to bottom without padding, four bytes a
/// pixel in the order alpha, red, green, blue, not premultiplied.
struct StatusNotifierPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes = {};

    static StatusNotifierPixmap from(const QImage &picture);

    friend bool operator==(const StatusNotifierPixmap &, const StatusNotifierPixmap &) = default;
};

using StatusNotifierPixmaps = QList<StatusNotifierPixmap>;

} // namespace corvane
