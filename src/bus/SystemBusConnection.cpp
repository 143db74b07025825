#include "bus/SystemBusConnection.h"

#include <atomic>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

QString nextName()
{
    static std::atomic<int> count = 0;
    return u"corvane-system-bus-%1"_s.arg(++count);
}

} // namespace

SystemBusConnection::SystemBusConnection()
    : m_name(nextName()),
      m_bus(QDBusConnection::connectToBus(QDBusConnection::SystemBus, m_name))
{
}

QString SystemBusConnection::address()
{
    const QString given = qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
    return given.isEmpty() ? u"unix:path=/var/run/dbus/system_bus_socket"_s : given;
}

SystemBusConnection::~SystemBusConnection()
{
    QDBusConnection::disconnectFromBus(m_name);
}

} // namespace corvane
