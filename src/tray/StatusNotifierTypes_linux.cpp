#include "tray/StatusNotifierTypes_linux.h"

#include <QDBusMetaType>
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

QDBusArgument &operator<<(QDBusArgument &argument, const StatusNotifierPixmap &pixmap)
{
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, StatusNotifierPixmap &pixmap)
{
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const StatusNotifierToolTip &toolTip)
{
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.pixmaps << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, StatusNotifierToolTip &toolTip)
{
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.pixmaps >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

void registerStatusNotifierTypes()
{
    qDBusRegisterMetaType<StatusNotifierPixmap>();
    qDBusRegisterMetaType<StatusNotifierPixmaps>();
    qDBusRegisterMetaType<StatusNotifierToolTip>();
}

} // namespace corvane
