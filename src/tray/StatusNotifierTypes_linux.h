#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QImage>
#include <QList>
#include <QString>

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

/// A tool tip in the trays' format, (sa(iiay)ss). Some trays show only the title.
struct StatusNotifierToolTip {
    QString iconName = {};
    StatusNotifierPixmaps pixmaps = {};
    QString title = {};
    QString text = {};
};

QDBusArgument &operator<<(QDBusArgument &argument, const StatusNotifierPixmap &pixmap);
const QDBusArgument &operator>>(const QDBusArgument &argument, StatusNotifierPixmap &pixmap);
QDBusArgument &operator<<(QDBusArgument &argument, const StatusNotifierToolTip &toolTip);
const QDBusArgument &operator>>(const QDBusArgument &argument, StatusNotifierToolTip &toolTip);

/// Registers these types with QtDBus. May be called repeatedly.
void registerStatusNotifierTypes();

} // namespace corvane
