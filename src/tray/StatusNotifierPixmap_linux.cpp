#include "tray/StatusNotifierPixmap_linux.h"

#include <QtEndian>

namespace corvane {

StatusNotifierPixmap StatusNotifierPixmap::from(const QImage &picture)
{
    const QImage image = picture.convertToFormat(QImage::Format_ARGB32);
    const qsizetype rowSize = 4 * qsizetype(image.width());
    QByteArray bytes(rowSize * image.height(), Qt::Uninitialized);
    for (int row = 0; row < image.height(); ++row)
        qToBigEndian<quint32>(image.constScanLine(row), image.width(),
                              bytes.data() + row * rowSize);
    return {.width = image.width(), .height = image.height(), .bytes = bytes};
}

} // namespace corvane
