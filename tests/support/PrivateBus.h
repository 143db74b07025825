#pragma once

#include "support/SpawnedProgram.h"

#include <QString>
#include <QTemporaryDir>

namespace corvane::test {

/// A message bus of the test's own, named by DBUS_SESSION_BUS_ADDRESS. It can be killed and started
/// again at the same address.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();

    /// Runs from here on; false if it did not come up.
    bool start();
    void kill();

    /// Hangs until it is to go on; it can be killed meanwhile.
    void hang() const;
    void goOn() const;

    const QString &address() const { return m_address; }

private:
    QTemporaryDir m_folder;
    const QString m_address;
    SpawnedProgram m_daemon;
};

} // namespace corvane::test
