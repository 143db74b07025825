#pragma once

#include "tray/StatusNotifierPixmap_linux.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QString>
#include <QVariantMap>

namespace corvane {

const QDBusArgument &operator>>(const QDBusArgument &argument, StatusNotifierPixmap &pixmap);

namespace test {

// What a tray reads of an item, and sends to it, in the form of Qt's bus library.

/// A menu item with its children, (ia{sv}av).
struct MenuLayout {
    int id = 0;
    QVariantMap properties = {};
    QList<MenuLayout> children = {};
};

/// Properties of one menu item, (ia{sv}).
struct MenuItem {
    int id = 0;
    QVariantMap properties = {};
};

/// An event at one menu item, (isvu).
struct MenuEvent {
    int id = 0;
    QString type = {};
    QDBusVariant data = QDBusVariant(0);
    uint time = 0;
};

/// A tool tip, (sa(iiay)ss).
struct ToolTip {
    QString iconName = {};
    StatusNotifierPixmaps pixmaps = {};
    QString title = {};
    QString text = {};
};

const QDBusArgument &operator>>(const QDBusArgument &argument, MenuLayout &layout);
const QDBusArgument &operator>>(const QDBusArgument &argument, MenuItem &item);
QDBusArgument &operator<<(QDBusArgument &argument, const MenuEvent &event);
const QDBusArgument &operator>>(const QDBusArgument &argument, MenuEvent &event);
const QDBusArgument &operator>>(const QDBusArgument &argument, ToolTip &toolTip);

/// A list of events as the argument of a call.
QVariant menuEvents(const QList<MenuEvent> &events);

} // namespace test

} // namespace corvane
