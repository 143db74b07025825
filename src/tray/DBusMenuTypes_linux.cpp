#include "tray/DBusMenuTypes_linux.h"

#include <QDBusMetaType>

namespace corvane {

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuLayout &layout)
{
    argument.beginStructure();
    argument << layout.id << layout.properties;
    argument.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const DBusMenuLayout &child : layout.children)
        argument << QDBusVariant(QVariant::fromValue(child));
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuLayout &layout)
{
    argument.beginStructure();
    argument >> layout.id >> layout.properties;
    layout.children.clear();
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        layout.children.append(qdbus_cast<DBusMenuLayout>(child.variant()));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuProperties &item)
{
    argument.beginStructure();
    argument << item.id << item.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuProperties &item)
{
    argument.beginStructure();
    argument >> item.id >> item.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuRemoved &item)
{
    argument.beginStructure();
    argument << item.id << item.names;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuRemoved &item)
{
    argument.beginStructure();
    argument >> item.id >> item.names;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuEvent &event)
{
    argument.beginStructure();
    argument << event.id << event.type << event.data << event.time;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuEvent &event)
{
    argument.beginStructure();
    argument >> event.id >> event.type >> event.data >> event.time;
    argument.endStructure();
    return argument;
}

void registerDBusMenuTypes()
{
    qDBusRegisterMetaType<DBusMenuLayout>();
    qDBusRegisterMetaType<DBusMenuProperties>();
    qDBusRegisterMetaType<QList<DBusMenuProperties>>();
    qDBusRegisterMetaType<DBusMenuRemoved>();
    qDBusRegisterMetaType<QList<DBusMenuRemoved>>();
    qDBusRegisterMetaType<DBusMenuEvent>();
    qDBusRegisterMetaType<QList<DBusMenuEvent>>();
}

} // namespace corvane
