#pragma once

#include <QDBusConnection>
#include <QString>

namespace corvane {

/// A connection of one's own to the system bus, closed with its owner. Made on a background job,
/// once somebody answers there: a bus that hangs holds up whoever connects, and with it all of the
/// program's connections. Used on the main thread.
class SystemBusLink {
public:
    SystemBusLink();
    ~SystemBusLink();
    SystemBusLink(const SystemBusLink &) = delete;
    SystemBusLink &operator=(const SystemBusLink &) = delete;

    /// Where the bus is.
    static QString address();

    /// Not connected if there is no system bus.
    const QDBusConnection &bus() const { return m_bus; }

private:
    const QString m_name;
    QDBusConnection m_bus;
};

} // namespace corvane
