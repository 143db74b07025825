#pragma once

#include "threads/MainThread.h"

#include <QDBusConnection>
#include <QString>

namespace corvane {

/// A private connection to the system bus, closed with its owner. Constructed on a background job,
/// after a BusProbe was answered: connecting to a bus that hangs blocks the caller and every other
/// connection of the process. Used on the main
/// thread.
class SystemBusConnection {
public:
    SystemBusConnection();
    ~SystemBusConnection();
    SystemBusConnection(const SystemBusConnection &) = delete;
    SystemBusConnection &operator=(const SystemBusConnection &) = delete;

    /// Address of the system bus, whether it runs or not.
    static QString address();

    /// Not connected if the bus was gone by then.
    const QDBusConnection &bus() const
    {
        assertMainThread();
        return m_bus;
    }

private:
    const QString m_name;
    QDBusConnection m_bus;
};

} // namespace corvane
