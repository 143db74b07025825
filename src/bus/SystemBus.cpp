#include "bus/SystemBus.h"

namespace corvane {

using namespace Qt::StringLiterals;

QString systemBusAddress()
{
    const QString given = qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
    return given.isEmpty() ? u"unix:path=/var/run/dbus/system_bus_socket"_s : given;
}

} // namespace corvane
