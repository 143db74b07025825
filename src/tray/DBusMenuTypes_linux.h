#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QStringList>
#include <QVariantMap>

namespace corvane {

/// A menu item with its children, (ia{sv}av).
struct DBusMenuLayout {
    int id = 0;
    QVariantMap properties = {};
    QList<DBusMenuLayout> children = {};
};

/// Properties of one item, (ia{sv}).
struct DBusMenuProperties {
    int id = 0;
    QVariantMap properties = {};
};

/// Names of properties that one item lost, (ias).
struct DBusMenuRemoved {
    int id = 0;
    QStringList names = {};
};

/// An event at one item, such as a click, (isvu).
struct DBusMenuEvent {
    int id = 0;
    QString type = {};
    QDBusVariant data = {};
    uint time = 0;
};

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuLayout &layout);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuLayout &layout);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuProperties &item);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuProperties &item);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuRemoved &item);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuRemoved &item);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuEvent &event);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuEvent &event);

/// Registers these types with QtDBus. May be called repeatedly.
void registerDBusMenuTypes();

} // namespace corvane
