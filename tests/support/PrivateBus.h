#pragma once

#include "support/SpawnedProgram.h"

#include <QString>
#include <QTemporaryDir>

namespace corvane::test {

/// A message bus for one test, whose address is set in DBUS_SESSION_BUS_ADDRESS. It can be killed
/// and restarted at the same address.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();

    /// Returns once the bus accepts connections; false if it does not start.
    bool start();
    void kill();

    /// Suspends the bus until `goOn`. It can be killed while it is suspended.
    void hang() const;
    void goOn() const;

    const QString &address() const { return m_address; }

private:
    QTemporaryDir m_folder;
    const QString m_address;
    SpawnedProgram m_daemon;
};

} // namespace corvane::test
