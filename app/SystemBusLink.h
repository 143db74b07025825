#pragma once

#include <QDBusConnection>

namespace corvane {

/// A connection of one's own to the system bus, closed with its owner. Made on a background job: a
/// bus that hangs holds up whoever connects. Used on the main thread.
class SystemBusLink {
public:
    SystemBusLink();
    ~SystemBusLink();
    SystemBusLink(const SystemBusLink &) = delete;
    SystemBusLink &operator=(const SystemBusLink &) = delete;

    /// Not connected if there is no system bus.
    const QDBusConnection &bus() const { return m_bus; }

private:
    const QString m_name;
    QDBusConnection m_bus;
};

} // namespace corvane
